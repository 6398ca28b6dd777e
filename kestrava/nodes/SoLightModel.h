#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoNode.h"

/// Whether what follows is lit.
class SoLightModel : public SoNode {
  SO_NODE(SoLightModel, SoNode)
  enum Model { BASE_COLOR, PHONG };
  static std::vector<SoEnumSymbol> const& models() {
    static std::vector<SoEnumSymbol> const symbols{{"BASE_COLOR", BASE_COLOR}, {"PHONG", PHONG}};
    return symbols;
  }

  SoSFEnum model{this, "model", PHONG, models()}; ///< BASE_COLOR: the diffuse colour as it is
  SoSFBool override_{this, "override", false};    ///< what this node sets can not be changed further down

 protected:
  ~SoLightModel() override = default;
};
