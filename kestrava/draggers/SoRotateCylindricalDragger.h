#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Turns about its y axis, as a roller.
class SoRotateCylindricalDragger : public SoDragger {
  SO_NODE(SoRotateCylindricalDragger, SoDragger)
  SoRotateCylindricalDragger();

  SoSFRotation rotation{this, "rotation"};
  SoHandlePart rotator{this, "rotator"};

 protected:
  ~SoRotateCylindricalDragger() override = default;
};
