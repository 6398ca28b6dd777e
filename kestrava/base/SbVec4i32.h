#pragma once

#include "kestrava/base/SbVec.h"

/// Four 32-bit integers.
using SbVec4i32 = SbVec<std::int32_t, 4>;
