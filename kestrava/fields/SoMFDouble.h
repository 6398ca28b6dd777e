#pragma once

#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type double.
SO_MFIELD(SoMFDouble, double)
