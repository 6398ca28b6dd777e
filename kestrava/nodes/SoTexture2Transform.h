#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFVec2f.h"
#include "kestrava/nodes/SoNode.h"

/// Moves, turns and scales the texture coordinates of what follows.
class SoTexture2Transform : public SoNode {
  SO_NODE(SoTexture2Transform, SoNode)
  SoSFVec2f translation{this, "translation"};
  SoSFFloat rotation{this, "rotation", 0.0f}; ///< radians, counterclockwise
  SoSFVec2f scaleFactor{this, "scaleFactor", SbVec2f(1, 1)};
  SoSFVec2f center{this, "center"};

 protected:
  ~SoTexture2Transform() override = default;
};
