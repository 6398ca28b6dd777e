#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbString.h"

/// Reads image files, told apart by what is in them: JPEG, PNG and SGI RGB, and what extension modules add.
class SbImageReader {
 public:
  SbImageReader() = delete;

  /// A further decoder. Both functions are called on any thread.
  struct Codec {
    char const* name;
    bool (*takes)(std::vector<unsigned char> const& file);
    /// Empty on success, else the reason; must check sizes before it takes memory for them.
    std::string (*decode)(std::vector<unsigned char> const& file, SbImage& image);
  };
  /// The codecs are asked in the order in which they were added; they belong to the caller, who removes them
  /// while nobody reads images.
  static void addCodec(Codec const* codec);
  static void removeCodec(Codec const* codec);

  /// Empty on success, else the reason as a sentence with the path in it; `image` is then unchanged. Grey
  /// images keep 1 or 2 components; 16-bit ones are reduced to 8. An image that would take more than
  /// SbImage::MAX_BYTES, or that such a short file can not hold, is refused before memory is taken for it.
  /// Usable from any thread.
  static std::string read(SbString const& path, SbImage& image);
  /// The same from memory; the reason then names no file.
  static std::string read(std::vector<unsigned char> const& file, SbImage& image);
};
