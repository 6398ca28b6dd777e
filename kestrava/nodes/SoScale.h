#pragma once

#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoTransformation.h"

/// Scales what follows about the origin.
class SoScale : public SoTransformation {
  SO_NODE(SoScale, SoTransformation)
  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};

 protected:
  ~SoScale() override = default;
};
