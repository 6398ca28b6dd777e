#pragma once

#include "kestrava/fields/SoSField.h"

/// A field with one uint32_t.
SO_SFIELD(SoSFUInt32, std::uint32_t)
