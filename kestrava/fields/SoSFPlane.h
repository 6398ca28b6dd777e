#pragma once

#include "kestrava/base/SbPlane.h"
#include "kestrava/fields/SoSField.h"

/// A plane; as text its normal and its distance from the origin.
SO_SFIELD(SoSFPlane, SbPlane)
