#pragma once

#include "kestrava/base/SbName.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbName.
SO_SFIELD(SoSFName, SbName)
