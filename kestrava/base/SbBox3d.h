#pragma once

#include "kestrava/base/SbBox.h"

/// A box of doubles in 3 dimensions.
using SbBox3d = SbBox<double, 3>;
