#pragma once

#include "kestrava/base/SbBox.h"

/// A box of floats in 3 dimensions.
using SbBox3f = SbBox<float, 3>;
