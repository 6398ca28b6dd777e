#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Stands for a plane that keeps what lies on the side of its arrow (+z): the arrow moves it along, its tip
/// turns it, the frame moves it across.
class SoClipPlaneDragger : public SoDragger {
  SO_NODE(SoClipPlaneDragger, SoDragger)
  SoClipPlaneDragger();

  SoSFVec3f translation{this, "translation"};
  SoSFRotation rotation{this, "rotation"};
  SoHandlePart zTranslator{this, "zTranslator"};
  SoHandlePart rotator{this, "rotator"};
  SoHandlePart translator{this, "translator"};

 protected:
  ~SoClipPlaneDragger() override = default;
};
