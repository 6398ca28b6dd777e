#pragma once

#include "kestrava/base/SbBox.h"

/// A box of 16-bit integers in 2 dimensions.
using SbBox2s = SbBox<std::int16_t, 2>;
