#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A ball around the centre of rotation: rolled, turned by its rings, and moved by its knobs without moving
/// what it turns.
class SoCenterballDragger : public SoTransformDragger {
  SO_NODE(SoCenterballDragger, SoTransformDragger)
  SoCenterballDragger();

  SoKitPart rotator{this, "rotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};
  SoKitPart xRotator{this, "xRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart yRotator{this, "yRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart zRotator{this, "zRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart yzCenterChanger{this, "yzCenterChanger", SoSeparator::getClassTypeId(),
                            SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xzCenterChanger{this, "xzCenterChanger", SoSeparator::getClassTypeId(),
                            SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xyCenterChanger{this, "xyCenterChanger", SoSeparator::getClassTypeId(),
                            SoDraggerHandle::getClassTypeId(), "this"};

 protected:
  ~SoCenterballDragger() override = default;
};
