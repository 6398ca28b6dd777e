#pragma once

#include "kestrava/base/SbVec2f.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec2f.
SO_SFIELD(SoSFVec2f, SbVec2f)
