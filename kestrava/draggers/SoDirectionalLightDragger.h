#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Stands for a light from far away, which shines along the arrow (-z): its tip turns, the ball at its foot
/// moves.
class SoDirectionalLightDragger : public SoDragger {
  SO_NODE(SoDirectionalLightDragger, SoDragger)
  SoDirectionalLightDragger();

  SoSFVec3f translation{this, "translation"};
  SoSFRotation rotation{this, "rotation"};
  SoHandlePart point{this, "point"};
  SoHandlePart rotator{this, "rotator"};

 protected:
  ~SoDirectionalLightDragger() override = default;
};
