#pragma once

#include "kestrava/base/SbRotation.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbRotation.
SO_MFIELD(SoMFRotation, SbRotation)
