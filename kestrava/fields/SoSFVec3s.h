#pragma once

#include "kestrava/base/SbVec3s.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec3s.
SO_SFIELD(SoSFVec3s, SbVec3s)
