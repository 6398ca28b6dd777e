#pragma once

#include "kestrava/base/SbVec3i32.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec3i32.
SO_SFIELD(SoSFVec3i32, SbVec3i32)
