#pragma once

#include "kestrava/base/SbColorRGBA.h"
#include "kestrava/fields/SoSField.h"

/// A field with one SbColorRGBA.
SO_SFIELD(SoSFColorRGBA, SbColorRGBA)
