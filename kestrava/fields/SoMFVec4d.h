#pragma once

#include "kestrava/base/SbVec4d.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec4d.
SO_MFIELD(SoMFVec4d, SbVec4d)
