#pragma once

#include "kestrava/engines/SoInterpolate.h"
#include "kestrava/fields/SoMFFloat.h"

/// Computes numbers between two others.
class SoInterpolateFloat : public SoInterpolate<SoMFFloat> {
  SO_ENGINE(SoInterpolateFloat, SoInterpolate<SoMFFloat>)

 protected:
  ~SoInterpolateFloat() override = default;
};
