#pragma once

#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type float.
SO_MFIELD(SoMFFloat, float)
