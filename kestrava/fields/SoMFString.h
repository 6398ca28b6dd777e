#pragma once

#include "kestrava/base/SbString.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbString.
SO_MFIELD(SoMFString, SbString)
