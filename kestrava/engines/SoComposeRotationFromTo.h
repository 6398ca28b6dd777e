#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFRotation.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Makes the shortest rotations that turn one direction into another. Inputs with several values are worked
/// off one by one; the last value of a shorter input counts for the rest.
class SoComposeRotationFromTo : public SoEngine {
  SO_ENGINE(SoComposeRotationFromTo, SoEngine)

  SoMFVec3f from{this, "from", SbVec3f(0, 0, 1)};
  SoMFVec3f to{this, "to", SbVec3f(0, 0, 1)};
  SoMFRotation rotation{this, "rotation", {}, SoField::EVENT_OUT};

 protected:
  ~SoComposeRotationFromTo() override = default;
  void evaluate() override;
};
