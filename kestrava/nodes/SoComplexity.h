#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoNode.h"

/// How finely the curved shapes and texts that follow are drawn.
class SoComplexity : public SoNode {
  SO_NODE(SoComplexity, SoNode)
  enum Type { OBJECT_SPACE, SCREEN_SPACE, BOUNDING_BOX };
  static std::vector<SoEnumSymbol> const& types() {
    static std::vector<SoEnumSymbol> const symbols{
        {"OBJECT_SPACE", OBJECT_SPACE}, {"SCREEN_SPACE", SCREEN_SPACE}, {"BOUNDING_BOX", BOUNDING_BOX}};
    return symbols;
  }

  SoSFEnum type{this, "type", OBJECT_SPACE, types()};
  SoSFFloat value{this, "value", 0.5f};                   ///< 0 coarse to 1 fine
  SoSFFloat textureQuality{this, "textureQuality", 0.5f}; ///< 0: no textures; 1: best filter
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoComplexity() override = default;
};
