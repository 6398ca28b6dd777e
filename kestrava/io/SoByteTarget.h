#pragma once

#include <memory>
#include <string_view>

#include "kestrava/base/SbString.h"

/// Where the bytes of a file that is written go. Operations answer what went wrong, an empty text when
/// nothing did. One that is destroyed without finish() leaves no file behind.
class SoByteTarget {
 public:
  virtual ~SoByteTarget() = default;
  virtual SbString write(std::string_view bytes) = 0;
  /// Writes what is left and puts the file in its place.
  virtual SbString finish() = 0;

  /// Null when the file can not be created; the reason is then in `fault`.
  static std::unique_ptr<SoByteTarget> openFile(SbString const& name, SbString& fault);
  /// Compresses on the way.
  static std::unique_ptr<SoByteTarget> pack(std::unique_ptr<SoByteTarget> to);
};
