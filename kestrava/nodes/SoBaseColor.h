#pragma once

#include "kestrava/base/SbColor.h"
#include "kestrava/fields/SoMFColor.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/nodes/SoNode.h"

/// The diffuse colours of what follows.
class SoBaseColor : public SoNode {
  SO_NODE(SoBaseColor, SoNode)
  SoMFColor rgb{this, "rgb", SbColor(0.8f, 0.8f, 0.8f)};
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoBaseColor() override = default;
};
