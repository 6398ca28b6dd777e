#pragma once

#include "kestrava/base/SbBox.h"

/// A box of 32-bit integers in 3 dimensions.
using SbBox3i32 = SbBox<std::int32_t, 3>;
