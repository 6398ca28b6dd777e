#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Turns about its z axis, as a wheel.
class SoRotateDiscDragger : public SoDragger {
  SO_NODE(SoRotateDiscDragger, SoDragger)
  SoRotateDiscDragger();

  SoSFRotation rotation{this, "rotation"};
  SoHandlePart rotator{this, "rotator"};

 protected:
  ~SoRotateDiscDragger() override = default;
};
