#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbString.h"

/// Reads image files: JPEG, PNG and SGI RGB, told apart by what is in them.
class SbImageReader {
 public:
  SbImageReader() = delete;

  /// Empty on success, else the reason as a sentence with the path in it; `image` is then unchanged. Grey
  /// images keep 1 or 2 components; 16-bit ones are reduced to 8. An image that would take more than
  /// SbImage::MAX_BYTES, or that such a short file can not hold, is refused before memory is taken for it.
  /// Usable from any thread.
  static std::string read(SbString const& path, SbImage& image);
  /// The same from memory; the reason then names no file.
  static std::string read(std::vector<unsigned char> const& file, SbImage& image);
};
