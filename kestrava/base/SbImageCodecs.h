#pragma once

#include <string>
#include <vector>

#include "kestrava/base/SbImage.h"

// The codecs behind SbImageReader and SbImageWriter, not for others. Each answers the reason why it failed,
// empty on success. Rows are kept from the bottom, as in SbImage; the encoders get a flat image that is not
// empty.

using SbImageBytes = std::vector<unsigned char>;

std::string SbDecodePng(SbImageBytes const& file, SbImage& image);
std::string SbDecodeJpeg(SbImageBytes const& file, SbImage& image);
std::string SbDecodeSgi(SbImageBytes const& file, SbImage& image);

std::string SbEncodePng(SbImage const& image, SbImageBytes& file);
/// 1 or 3 components only.
std::string SbEncodeJpeg(SbImage const& image, int quality, SbImageBytes& file);
std::string SbEncodeSgi(SbImage const& image, SbImageBytes& file);
std::string SbEncodeTiff(SbImage const& image, SbImageBytes& file);
/// 1 or 3 components only.
std::string SbEncodePostScript(SbImage const& image, SbImageBytes& file);

/// Why an image of that size is not read from `fileBytes` bytes, of which each can stand for `ratio` bytes at
/// most; empty when it may be.
std::string SbCheckImageSize(long width, long height, int components, std::size_t fileBytes,
                             std::size_t ratio);
