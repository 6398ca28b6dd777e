#pragma once

#include "kestrava/engines/SoInterpolate.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Computes vectors between two others.
class SoInterpolateVec3f : public SoInterpolate<SoMFVec3f> {
  SO_ENGINE(SoInterpolateVec3f, SoInterpolate<SoMFVec3f>)

 protected:
  ~SoInterpolateVec3f() override = default;
};
