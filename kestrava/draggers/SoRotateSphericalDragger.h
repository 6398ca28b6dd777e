#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Turns about the origin, as a ball that is rolled with a finger.
class SoRotateSphericalDragger : public SoDragger {
  SO_NODE(SoRotateSphericalDragger, SoDragger)
  SoRotateSphericalDragger();

  SoSFRotation rotation{this, "rotation"};
  SoHandlePart rotator{this, "rotator"};

 protected:
  ~SoRotateSphericalDragger() override = default;
};
