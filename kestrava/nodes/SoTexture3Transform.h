#pragma once

#include "kestrava/fields/SoSFRotation.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoNode.h"

/// Moves, turns and scales the texture coordinates of what follows, in three dimensions.
class SoTexture3Transform : public SoNode {
  SO_NODE(SoTexture3Transform, SoNode)
  SoSFVec3f translation{this, "translation"};
  SoSFRotation rotation{this, "rotation"};
  SoSFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoSFRotation scaleOrientation{this, "scaleOrientation"};
  SoSFVec3f center{this, "center"};

 protected:
  ~SoTexture3Transform() override = default;
};
