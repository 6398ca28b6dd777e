#pragma once

#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type uint16_t.
SO_MFIELD(SoMFUShort, std::uint16_t)
