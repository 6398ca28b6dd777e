#pragma once

#include "kestrava/base/SbBox.h"

/// A box of doubles in 2 dimensions.
using SbBox2d = SbBox<double, 2>;
