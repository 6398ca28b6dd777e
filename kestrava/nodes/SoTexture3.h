#pragma once

#include "kestrava/nodes/SoNode.h"

/// Base of the nodes that put an image with depth on what follows.
class SoTexture3 : public SoNode {
  SO_ABSTRACT_NODE(SoTexture3, SoNode)

 protected:
  SoTexture3() = default;
  ~SoTexture3() override = default;
};
