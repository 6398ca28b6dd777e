#pragma once

#include "kestrava/fields/SoSField.h"

/// A field with one double.
SO_SFIELD(SoSFDouble, double)
