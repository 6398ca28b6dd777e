#pragma once

#include "kestrava/nodes/SoNode.h"

/// Base of the nodes that fill the window before anything is drawn; the one met last counts.
class SoBackground : public SoNode {
  SO_ABSTRACT_NODE(SoBackground, SoNode)

 protected:
  SoBackground() = default;
  ~SoBackground() override = default;
};
