#pragma once

#include "kestrava/base/SbVec2i32.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec2i32.
SO_MFIELD(SoMFVec2i32, SbVec2i32)
