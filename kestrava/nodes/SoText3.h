#pragma once

#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// Text with a thickness in the scene. Its parts, for materials: front, sides, back.
class SoText3 : public SoShape {
  SO_NODE(SoText3, SoShape)
  enum Justification { LEFT, RIGHT, CENTER };
  static std::vector<SoEnumSymbol> const& justifications() {
    static std::vector<SoEnumSymbol> const symbols{{"LEFT", LEFT}, {"RIGHT", RIGHT}, {"CENTER", CENTER}};
    return symbols;
  }
  enum Part { FRONT = 1, SIDES = 2, BACK = 4, ALL = 7 };
  static std::vector<SoEnumSymbol> const& allParts() {
    static std::vector<SoEnumSymbol> const symbols{{"FRONT", FRONT}, {"SIDES", SIDES}, {"BACK", BACK}};
    return symbols;
  }

  SoMFString string{this, "string", SbString()}; ///< one line each
  SoSFFloat spacing{this, "spacing", 1.0f};      ///< between lines, in heights of the font
  SoSFEnum justification{this, "justification", LEFT, justifications()};
  SoSFBitMask parts{this, "parts", FRONT, allParts()};

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;

 protected:
  ~SoText3() override = default;
};
