#pragma once

#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type int32_t.
SO_MFIELD(SoMFInt32, std::int32_t)
