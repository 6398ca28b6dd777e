#pragma once

#include "kestrava/fields/SoSField.h"

/// A field with one int16_t.
SO_SFIELD(SoSFShort, std::int16_t)
