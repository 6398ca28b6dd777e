#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoNode.h"

/// What counts as a hit on the shapes that follow.
class SoPickStyle : public SoNode {
  SO_NODE(SoPickStyle, SoNode)
  enum Style { SHAPE, BOUNDING_BOX, UNPICKABLE };
  static std::vector<SoEnumSymbol> const& styles() {
    static std::vector<SoEnumSymbol> const symbols{
        {"SHAPE", SHAPE}, {"BOUNDING_BOX", BOUNDING_BOX}, {"UNPICKABLE", UNPICKABLE}};
    return symbols;
  }

  SoSFEnum style{this, "style", SHAPE, styles()};
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoPickStyle() override = default;
};
