#pragma once

#include "kestrava/base/SbVec2d.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec2d.
SO_SFIELD(SoSFVec2d, SbVec2d)
