#pragma once

#include "kestrava/base/SbVec2d.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec2d.
SO_MFIELD(SoMFVec2d, SbVec2d)
