#pragma once

#include "kestrava/base/SbTime.h"
#include "kestrava/fields/SoSField.h"

/// A time in seconds.
SO_SFIELD(SoSFTime, SbTime)
