#pragma once

#include "kestrava/base/SbBox3f.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox3f.
SO_SFIELD(SoSFBox3f, SbBox3f)
