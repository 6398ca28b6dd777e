#pragma once

#include "kestrava/base/SbBox3i32.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox3i32.
SO_SFIELD(SoSFBox3i32, SbBox3i32)
