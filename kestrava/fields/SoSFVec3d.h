#pragma once

#include "kestrava/base/SbVec3d.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec3d.
SO_SFIELD(SoSFVec3d, SbVec3d)
