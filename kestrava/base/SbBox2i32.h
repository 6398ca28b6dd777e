#pragma once

#include "kestrava/base/SbBox.h"

/// A box of 32-bit integers in 2 dimensions.
using SbBox2i32 = SbBox<std::int32_t, 2>;
