#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFRotation.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Tells the axes and the angles of rotations.
class SoDecomposeRotation : public SoEngine {
  SO_ENGINE(SoDecomposeRotation, SoEngine)

  SoMFRotation rotation{this, "rotation", SbRotation()};
  SoMFVec3f axis{this, "axis", {}, SoField::EVENT_OUT};
  SoMFFloat angle{this, "angle", 0.f, SoField::EVENT_OUT}; ///< radians

 protected:
  ~SoDecomposeRotation() override = default;
  void evaluate() override;
};
