#pragma once

#include "kestrava/base/SbVec3f.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec3f.
SO_SFIELD(SoSFVec3f, SbVec3f)
