#pragma once

#include "kestrava/base/SbName.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFName.h"
#include "kestrava/nodes/SoNode.h"

/// The font of the texts that follow.
class SoFont : public SoNode {
  SO_NODE(SoFont, SoNode)
  SoSFName name{this, "name", SbName("defaultFont")}; ///< as fontconfig knows it, or a font file
  SoSFFloat size{this, "size", 10.0f}; ///< points for text on the screen, scene units for text in the scene
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoFont() override = default;
};
