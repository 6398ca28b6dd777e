#pragma once

#include "kestrava/nodes/SoNode.h"

/// Base of the nodes that change the transformation of what follows.
class SoTransformation : public SoNode {
  SO_ABSTRACT_NODE(SoTransformation, SoNode)

 protected:
  SoTransformation() = default;
  ~SoTransformation() override = default;
};
