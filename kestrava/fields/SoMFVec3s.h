#pragma once

#include "kestrava/base/SbVec3s.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec3s.
SO_MFIELD(SoMFVec3s, SbVec3s)
