#pragma once

#include "kestrava/base/SbVec3f.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec3f.
SO_MFIELD(SoMFVec3f, SbVec3f)
