#pragma once

#include "kestrava/fields/SoSField.h"

/// A field with one float.
SO_SFIELD(SoSFFloat, float)
