#pragma once

#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/nodes/SoNode.h"

/// The texture coordinates that the shapes that follow refer to.
class SoTextureCoordinate3 : public SoNode {
  SO_NODE(SoTextureCoordinate3, SoNode)
  SoMFVec3f point{this, "point"};

 protected:
  ~SoTextureCoordinate3() override = default;
};
