#pragma once

#include "kestrava/base/SbVec.h"

/// Three 32-bit integers.
using SbVec3i32 = SbVec<std::int32_t, 3>;
