#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Scales along its x axis.
class SoScale1Dragger : public SoDragger {
  SO_NODE(SoScale1Dragger, SoDragger)
  SoScale1Dragger();

  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoHandlePart scaler{this, "scaler"};

 protected:
  ~SoScale1Dragger() override = default;
};
