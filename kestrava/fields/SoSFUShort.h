#pragma once

#include "kestrava/fields/SoSField.h"

/// A field with one uint16_t.
SO_SFIELD(SoSFUShort, std::uint16_t)
