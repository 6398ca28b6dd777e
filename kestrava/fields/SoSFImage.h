#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/fields/SoSField.h"

/// An image held in memory; as text width, height, components and one hexadecimal number a pixel, from the bottom row up.
SO_SFIELD(SoSFImage, SbImage)
