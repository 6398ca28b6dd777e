#pragma once

#include "kestrava/base/SbVec2s.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec2s.
SO_MFIELD(SoMFVec2s, SbVec2s)
