#pragma once

#include "kestrava/base/SbVec.h"

/// Two 16-bit integers: a position or a size in pixels.
using SbVec2s = SbVec<std::int16_t, 2>;
