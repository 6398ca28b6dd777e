#pragma once

#include "kestrava/base/SbColor.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbColor.
SO_MFIELD(SoMFColor, SbColor)
