#pragma once

#include "kestrava/base/SbBox.h"

/// A box of 16-bit integers in 3 dimensions.
using SbBox3s = SbBox<std::int16_t, 3>;
