#pragma once

#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoNode.h"

/// Text about a scene; without effect.
class SoInfo : public SoNode {
  SO_NODE(SoInfo, SoNode)
  SoSFString string{this, "string"};

 protected:
  ~SoInfo() override = default;
};
