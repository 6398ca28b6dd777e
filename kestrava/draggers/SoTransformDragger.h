#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Base of the draggers that change a whole transform. They turn about the middle of their handles.
class SoTransformDragger : public SoDragger {
  SO_ABSTRACT_NODE(SoTransformDragger, SoDragger)

  SoSFVec3f translation{this, "translation"};
  SoSFRotation rotation{this, "rotation"};
  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoSFRotation scaleOrientation{this, "scaleOrientation"};
  SoSFVec3f center{this, "center"};

 protected:
  using SoDragger::SoDragger;
  ~SoTransformDragger() override = default;
};
