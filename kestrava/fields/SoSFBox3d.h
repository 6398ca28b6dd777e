#pragma once

#include "kestrava/base/SbBox3d.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbBox3d.
SO_SFIELD(SoSFBox3d, SbBox3d)
