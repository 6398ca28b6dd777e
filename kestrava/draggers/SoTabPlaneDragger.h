#pragma once

#include "kestrava/draggers/SoDragger.h"

/// A square: moved in its plane, scaled by the tabs at its corners along both sides, by those on its edges
/// along one.
class SoTabPlaneDragger : public SoDragger {
  SO_NODE(SoTabPlaneDragger, SoDragger)
  SoTabPlaneDragger();

  SoSFVec3f translation{this, "translation"};
  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoHandlePart translator{this, "translator"};
  SoHandlePart scaler{this, "scaler"};
  SoHandlePart xScaler{this, "xScaler"};
  SoHandlePart yScaler{this, "yScaler"};

 protected:
  ~SoTabPlaneDragger() override = default;
};
