#pragma once

#include "kestrava/base/SbString.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbString.
SO_SFIELD(SoSFString, SbString)
