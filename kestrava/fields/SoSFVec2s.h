#pragma once

#include "kestrava/base/SbVec2s.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbVec2s.
SO_SFIELD(SoSFVec2s, SbVec2s)
