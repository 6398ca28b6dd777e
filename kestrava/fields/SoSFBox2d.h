#pragma once

#include "kestrava/base/SbBox2d.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox2d.
SO_SFIELD(SoSFBox2d, SbBox2d)
