#pragma once

#include "kestrava/base/SbBox2f.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox2f.
SO_SFIELD(SoSFBox2f, SbBox2f)
