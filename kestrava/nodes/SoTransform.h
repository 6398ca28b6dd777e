#pragma once

#include "kestrava/fields/SoSFRotation.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoTransformation.h"

/// Scales about a centre along turned axes, then rotates about the centre, then moves.
class SoTransform : public SoTransformation {
  SO_NODE(SoTransform, SoTransformation)
  SoSFVec3f translation{this, "translation"};
  SoSFRotation rotation{this, "rotation"};
  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoSFRotation scaleOrientation{this, "scaleOrientation"}; ///< axes along which it scales
  SoSFVec3f center{this, "center"};

 protected:
  ~SoTransform() override = default;
};
