#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Scales along its x and y axes alike.
class SoScale2UniformDragger : public SoDragger {
  SO_NODE(SoScale2UniformDragger, SoDragger)
  SoScale2UniformDragger();

  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoHandlePart scaler{this, "scaler"};

 protected:
  ~SoScale2UniformDragger() override = default;
};
