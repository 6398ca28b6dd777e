#pragma once

#include "kestrava/base/SbVec.h"

/// Three 16-bit integers.
using SbVec3s = SbVec<std::int16_t, 3>;
