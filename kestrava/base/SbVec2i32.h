#pragma once

#include "kestrava/base/SbVec.h"

/// Two 32-bit integers.
using SbVec2i32 = SbVec<std::int32_t, 2>;
