#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbString.h"

/// Image files, each read once for as long as somebody uses it. Usable from any thread.
class SoImageCache {
 public:
  SoImageCache() = delete;
  /// The image of a file along the search path. A file that has changed on disk since is read again. Empty
  /// when there is no such file or it can not be read; `error` then says why.
  static SbImage get(SbString const& name, SbString& error);
};
