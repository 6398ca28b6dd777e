#pragma once

#include "kestrava/fields/SoMFVec2f.h"
#include "kestrava/nodes/SoNode.h"

/// The texture coordinates that the shapes that follow refer to.
class SoTextureCoordinate2 : public SoNode {
  SO_NODE(SoTextureCoordinate2, SoNode)
  SoMFVec2f point{this, "point"};

 protected:
  ~SoTextureCoordinate2() override = default;
};
