#pragma once

#include "kestrava/base/SbBox.h"

/// A box of floats in 2 dimensions.
using SbBox2f = SbBox<float, 2>;
