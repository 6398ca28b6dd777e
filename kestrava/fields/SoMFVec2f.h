#pragma once

#include "kestrava/base/SbVec2f.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec2f.
SO_MFIELD(SoMFVec2f, SbVec2f)
