#pragma once

#include "kestrava/base/SbVec.h"

/// Four floats.
using SbVec4f = SbVec<float, 4>;
