#pragma once

#include "kestrava/base/SbMatrix.h"
#include "kestrava/fields/SoSField.h"

/// A 4x4 matrix for row vectors; as text 16 reals, row by row.
SO_SFIELD(SoSFMatrix, SbMatrix)
