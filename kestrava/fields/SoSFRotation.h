#pragma once

#include "kestrava/base/SbRotation.h"
#include "kestrava/fields/SoSField.h"

/// A rotation; as text an axis and an angle in radians.
SO_SFIELD(SoSFRotation, SbRotation)
