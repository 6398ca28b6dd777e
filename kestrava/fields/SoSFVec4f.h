#pragma once

#include "kestrava/base/SbVec4f.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec4f.
SO_SFIELD(SoSFVec4f, SbVec4f)
