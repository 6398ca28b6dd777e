#pragma once

#include "kestrava/base/SbVec3i32.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec3i32.
SO_MFIELD(SoMFVec3i32, SbVec3i32)
