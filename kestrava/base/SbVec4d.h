#pragma once

#include "kestrava/base/SbVec.h"

/// Four doubles.
using SbVec4d = SbVec<double, 4>;
