#pragma once

#include "kestrava/fields/SoSFName.h"
#include "kestrava/nodes/SoNode.h"

/// Marks a place in a scene; without effect.
class SoLabel : public SoNode {
  SO_NODE(SoLabel, SoNode)
  SoSFName label{this, "label"};

 protected:
  ~SoLabel() override = default;
};
