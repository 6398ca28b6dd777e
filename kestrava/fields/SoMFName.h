#pragma once

#include "kestrava/base/SbName.h"
#include "kestrava/fields/SoMField.h"

/// A field with any number of values of type SbName.
SO_MFIELD(SoMFName, SbName)
