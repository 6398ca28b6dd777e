#pragma once

#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type uint32_t.
SO_MFIELD(SoMFUInt32, std::uint32_t)
