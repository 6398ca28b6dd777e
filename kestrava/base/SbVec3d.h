#pragma once

#include "kestrava/base/SbVec.h"

/// Three doubles.
using SbVec3d = SbVec<double, 3>;
