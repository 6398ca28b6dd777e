#pragma once

#include "kestrava/base/SbVec.h"

/// Four bytes.
using SbVec4ub = SbVec<std::uint8_t, 4>;
