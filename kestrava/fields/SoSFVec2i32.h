#pragma once

#include "kestrava/base/SbVec2i32.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec2i32.
SO_SFIELD(SoSFVec2i32, SbVec2i32)
