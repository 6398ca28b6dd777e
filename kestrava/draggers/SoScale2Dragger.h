#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Scales along its x and y axes. Shift keeps to one of them.
class SoScale2Dragger : public SoDragger {
  SO_NODE(SoScale2Dragger, SoDragger)
  SoScale2Dragger();

  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoHandlePart scaler{this, "scaler"};

 protected:
  ~SoScale2Dragger() override = default;
};
