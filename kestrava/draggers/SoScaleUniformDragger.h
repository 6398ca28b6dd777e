#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Scales in all directions alike.
class SoScaleUniformDragger : public SoDragger {
  SO_NODE(SoScaleUniformDragger, SoDragger)
  SoScaleUniformDragger();

  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoHandlePart scaler{this, "scaler"};

 protected:
  ~SoScaleUniformDragger() override = default;
};
