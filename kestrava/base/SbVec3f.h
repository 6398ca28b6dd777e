#pragma once

#include "kestrava/base/SbVec.h"

/// Three floats: a point or a direction.
using SbVec3f = SbVec<float, 3>;
