#pragma once

#include "kestrava/fields/SoSField.h"

/// A truth value; TRUE or FALSE as text, 1 and 0 are read too.
SO_SFIELD(SoSFBool, bool)
