#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFRotation.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Makes rotations from axes and angles. Inputs with several values are worked off one by one; the last value
/// of a shorter input counts for the rest.
class SoComposeRotation : public SoEngine {
  SO_ENGINE(SoComposeRotation, SoEngine)

  SoMFVec3f axis{this, "axis", SbVec3f(0, 0, 1)};
  SoMFFloat angle{this, "angle", 0.f}; ///< radians
  SoMFRotation rotation{this, "rotation", {}, SoField::EVENT_OUT};

 protected:
  ~SoComposeRotation() override = default;
  void evaluate() override;
};
