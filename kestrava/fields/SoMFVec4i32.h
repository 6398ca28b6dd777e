#pragma once

#include "kestrava/base/SbVec4i32.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec4i32.
SO_MFIELD(SoMFVec4i32, SbVec4i32)
