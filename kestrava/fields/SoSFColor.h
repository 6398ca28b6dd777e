#pragma once

#include "kestrava/base/SbColor.h"
#include "kestrava/fields/SoSField.h"

/// A colour: red, green, blue, 0 to 1.
SO_SFIELD(SoSFColor, SbColor)
