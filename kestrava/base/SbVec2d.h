#pragma once

#include "kestrava/base/SbVec.h"

/// Two doubles.
using SbVec2d = SbVec<double, 2>;
