#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFColor.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoNode.h"

/// Base of the lights; a light shines on what follows it.
class SoLight : public SoNode {
  SO_ABSTRACT_NODE(SoLight, SoNode)
  SoSFBool on{this, "on", true};
  SoSFFloat intensity{this, "intensity", 1.0f}; ///< 0 to 1
  SoSFColor color{this, "color", SbColor(1, 1, 1)};

 protected:
  SoLight() = default;
  ~SoLight() override = default;
};
