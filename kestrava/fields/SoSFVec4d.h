#pragma once

#include "kestrava/base/SbVec4d.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec4d.
SO_SFIELD(SoSFVec4d, SbVec4d)
