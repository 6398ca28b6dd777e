#pragma once

#include "kestrava/base/SbTime.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbTime.
SO_MFIELD(SoMFTime, SbTime)
