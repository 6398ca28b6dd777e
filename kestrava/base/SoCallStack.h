#pragma once

#include "kestrava/base/SbString.h"

/// The calls that led here, one a line, the innermost first: "#0 function + 0x1f (library)". Calls inside the
/// one that returns to `innermost` (see __builtin_return_address) are left out. Names are known only for what
/// the dynamic linker knows.
SbString SoCallStack(void const* innermost);
