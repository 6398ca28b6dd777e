#pragma once

#include "kestrava/fields/SoMFVec4f.h"
#include "kestrava/nodes/SoNode.h"

/// The points that the shapes that follow refer to, homogeneous.
class SoCoordinate4 : public SoNode {
  SO_NODE(SoCoordinate4, SoNode)
  SoMFVec4f point{this, "point", SbVec4f(0, 0, 0, 1)};

 protected:
  ~SoCoordinate4() override = default;
};
