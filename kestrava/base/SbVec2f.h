#pragma once

#include "kestrava/base/SbVec.h"

/// Two floats.
using SbVec2f = SbVec<float, 2>;
