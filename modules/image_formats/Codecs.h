#pragma once

#include "kestrava/base/SbImageReader.h"

// The decoders of this module, each as a codec of the image reader wants it: the rows from the bottom, 8 bits
// a component.

using ImageBytes = std::vector<unsigned char>;

bool takesWebp(ImageBytes const& file);
bool takesBmp(ImageBytes const& file);
/// The first picture of an animation.
bool takesGif(ImageBytes const& file);
bool takesPsd(ImageBytes const& file);
/// Radiance; light without an upper bound is mapped to what a screen can show.
bool takesHdr(ImageBytes const& file);
/// The binary forms of PGM and PPM.
bool takesPnm(ImageBytes const& file);
/// By whether the header makes sense, there being no sign.
bool takesTga(ImageBytes const& file);

std::string decodeWebp(ImageBytes const& file, SbImage& image);
std::string decodeBmp(ImageBytes const& file, SbImage& image);
std::string decodeGif(ImageBytes const& file, SbImage& image);
std::string decodePsd(ImageBytes const& file, SbImage& image);
std::string decodeHdr(ImageBytes const& file, SbImage& image);
std::string decodePnm(ImageBytes const& file, SbImage& image);
std::string decodeTga(ImageBytes const& file, SbImage& image);

/// Turns rows upside down in place.
void flipRows(ImageBytes& pixels, std::size_t rowBytes);
