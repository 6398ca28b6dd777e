#pragma once

#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/nodes/SoNode.h"

/// The points that the shapes that follow refer to.
class SoCoordinate3 : public SoNode {
  SO_NODE(SoCoordinate3, SoNode)
  SoMFVec3f point{this, "point", SbVec3f(0, 0, 0)};

 protected:
  ~SoCoordinate3() override = default;
};
