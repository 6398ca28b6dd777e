#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFColor.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoNode.h"

/// The ambient light, the fog, and how light fades with distance.
class SoEnvironment : public SoNode {
  SO_NODE(SoEnvironment, SoNode)
  enum FogType { NONE, HAZE, FOG, SMOKE };
  static std::vector<SoEnumSymbol> const& fogTypes() {
    static std::vector<SoEnumSymbol> const symbols{
        {"NONE", NONE}, {"HAZE", HAZE}, {"FOG", FOG}, {"SMOKE", SMOKE}};
    return symbols;
  }

  SoSFFloat ambientIntensity{this, "ambientIntensity", 0.2f}; ///< 0 to 1
  SoSFColor ambientColor{this, "ambientColor", SbColor(1, 1, 1)};
  SoSFVec3f attenuation{this, "attenuation", SbVec3f(0, 0, 1)}; ///< quadratic, linear, constant
  SoSFEnum fogType{this, "fogType", NONE, fogTypes()};
  SoSFColor fogColor{this, "fogColor", SbColor(1, 1, 1)};
  SoSFFloat fogVisibility{this, "fogVisibility",
                          0.0f}; ///< distance at which nothing is seen; 0: the far end of the view
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoEnvironment() override = default;
};
