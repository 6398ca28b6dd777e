#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Turns about its z axis, as a wheel.
class SoRotateDiscDragger : public SoDragger {
  SO_NODE(SoRotateDiscDragger, SoDragger)
  SoRotateDiscDragger();

  SoSFRotation rotation{this, "rotation"};
  SoKitPart rotator{this, "rotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};

 protected:
  ~SoRotateDiscDragger() override = default;
};
