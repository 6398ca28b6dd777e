#pragma once

#include "kestrava/base/SbBox2s.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox2s.
SO_SFIELD(SoSFBox2s, SbBox2s)
