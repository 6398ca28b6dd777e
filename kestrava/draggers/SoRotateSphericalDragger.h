#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Turns about the origin, as a ball that is rolled with a finger.
class SoRotateSphericalDragger : public SoDragger {
  SO_NODE(SoRotateSphericalDragger, SoDragger)
  SoRotateSphericalDragger();

  SoSFRotation rotation{this, "rotation"};
  SoKitPart rotator{this, "rotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};

 protected:
  ~SoRotateSphericalDragger() override = default;
};
