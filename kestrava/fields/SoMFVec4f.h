#pragma once

#include "kestrava/base/SbVec4f.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec4f.
SO_MFIELD(SoMFVec4f, SbVec4f)
