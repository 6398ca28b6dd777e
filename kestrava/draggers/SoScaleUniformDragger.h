#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Scales in all directions alike.
class SoScaleUniformDragger : public SoDragger {
  SO_NODE(SoScaleUniformDragger, SoDragger)
  SoScaleUniformDragger();

  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoKitPart scaler{this, "scaler", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this"};

 protected:
  ~SoScaleUniformDragger() override = default;
};
