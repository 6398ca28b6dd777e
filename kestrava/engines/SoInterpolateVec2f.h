#pragma once

#include "kestrava/engines/SoInterpolate.h"
#include "kestrava/fields/SoMFVec2f.h"

/// Computes vectors between two others.
class SoInterpolateVec2f : public SoInterpolate<SoMFVec2f> {
  SO_ENGINE(SoInterpolateVec2f, SoInterpolate<SoMFVec2f>)

 protected:
  ~SoInterpolateVec2f() override = default;
};
