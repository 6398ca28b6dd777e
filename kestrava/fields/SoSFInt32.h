#pragma once

#include "kestrava/fields/SoSField.h"

/// A field with one int32_t.
SO_SFIELD(SoSFInt32, std::int32_t)
