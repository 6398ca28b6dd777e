#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A ball around the centre of rotation: rolled, turned by its rings, and moved by its knobs without moving
/// what it turns.
class SoCenterballDragger : public SoTransformDragger {
  SO_NODE(SoCenterballDragger, SoTransformDragger)
  SoCenterballDragger();

  SoHandlePart rotator{this, "rotator"};
  SoHandlePart xRotator{this, "xRotator"};
  SoHandlePart yRotator{this, "yRotator"};
  SoHandlePart zRotator{this, "zRotator"};
  SoHandlePart yzCenterChanger{this, "yzCenterChanger"};
  SoHandlePart xzCenterChanger{this, "xzCenterChanger"};
  SoHandlePart xyCenterChanger{this, "xyCenterChanger"};

 protected:
  ~SoCenterballDragger() override = default;
};
