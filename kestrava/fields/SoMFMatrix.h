#pragma once

#include "kestrava/base/SbMatrix.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbMatrix.
SO_MFIELD(SoMFMatrix, SbMatrix)
