#pragma once

#include "kestrava/base/SbBox3s.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox3s.
SO_SFIELD(SoSFBox3s, SbBox3s)
