#pragma once

#include "kestrava/nodes/SoNode.h"

/// Base of the nodes that give colours as indices into a map.
class SoColorIndex : public SoNode {
  SO_ABSTRACT_NODE(SoColorIndex, SoNode)

 protected:
  SoColorIndex() = default;
  ~SoColorIndex() override = default;
};
