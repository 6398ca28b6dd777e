#pragma once

#include <memory>

#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbString.h"

/// Image files, each read once for as long as somebody uses it. Usable from any thread.
class SoImageCache {
 public:
  SoImageCache() = delete;

  /// What reading a file has given: an image, or else the reason why there is none.
  struct File {
    SbImage image;
    SbString fault;
  };
  /// The image file of a name beside the scene file that names it, else along the search path; never null. A
  /// file that has changed on disk since is read again. A fault is posted as a read error the first time:
  /// everybody who asks while the answer is kept gets the same one.
  static std::shared_ptr<File const> open(SbString const& name, SbString const& sceneFile = SbString());

  /// The image along the search path; empty when there is none, `error` then says why. Posts nothing.
  static SbImage get(SbString const& name, SbString& error);
};

/// The image file that a field of a node names; read when it is first needed. Usable from several threads.
class SoNamedImage {
 public:
  /// To be called when the name is set. Notes which scene file is being read: the image lies beside that.
  void nameChanged();
  /// Empty when there is none, which is posted once.
  SbImage get(SbString const& name);

 private:
  SbString m_sceneFile;
  std::shared_ptr<SoImageCache::File const> m_file;
};
