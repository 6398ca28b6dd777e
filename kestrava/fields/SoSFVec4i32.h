#pragma once

#include "kestrava/base/SbVec4i32.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec4i32.
SO_SFIELD(SoSFVec4i32, SbVec4i32)
