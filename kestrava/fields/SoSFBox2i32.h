#pragma once

#include "kestrava/base/SbBox2i32.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox2i32.
SO_SFIELD(SoSFBox2i32, SbBox2i32)
