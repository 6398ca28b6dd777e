#pragma once

#include "kestrava/base/SbVec3d.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbVec3d.
SO_MFIELD(SoMFVec3d, SbVec3d)
