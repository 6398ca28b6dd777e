#pragma once

#include "kestrava/base/SbPlane.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbPlane.
SO_MFIELD(SoMFPlane, SbPlane)
