#pragma once

#include "kestrava/engines/SoInterpolate.h"
#include "kestrava/fields/SoMFRotation.h"

/// Computes rotations, along the shorter arc between two others.
class SoInterpolateRotation : public SoInterpolate<SoMFRotation> {
  SO_ENGINE(SoInterpolateRotation, SoInterpolate<SoMFRotation>)

 protected:
  ~SoInterpolateRotation() override = default;
};
