#pragma once

#include "kestrava/engines/SoInterpolate.h"
#include "kestrava/fields/SoMFVec4f.h"

/// Computes vectors between two others.
class SoInterpolateVec4f : public SoInterpolate<SoMFVec4f> {
  SO_ENGINE(SoInterpolateVec4f, SoInterpolate<SoMFVec4f>)

 protected:
  ~SoInterpolateVec4f() override = default;
};
