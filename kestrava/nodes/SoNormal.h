#pragma once

#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/nodes/SoNode.h"

/// The normals that the shapes that follow refer to.
class SoNormal : public SoNode {
  SO_NODE(SoNormal, SoNode)
  SoMFVec3f vector{this, "vector"}; ///< unit length

 protected:
  ~SoNormal() override = default;
};
