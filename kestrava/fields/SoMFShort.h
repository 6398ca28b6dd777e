#pragma once

#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type int16_t.
SO_MFIELD(SoMFShort, std::int16_t)
