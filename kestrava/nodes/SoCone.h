#pragma once

#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// A cone around the y axis, its middle at the origin and its tip up. Its parts, for materials: sides,
/// bottom.
class SoCone : public SoShape {
  SO_NODE(SoCone, SoShape)
  enum Part { SIDES = 1, BOTTOM = 2, ALL = 3 };
  static std::vector<SoEnumSymbol> const& allParts() {
    static std::vector<SoEnumSymbol> const symbols{{"SIDES", SIDES}, {"BOTTOM", BOTTOM}};
    return symbols;
  }

  SoSFBitMask parts{this, "parts", ALL, allParts()};
  SoSFFloat bottomRadius{this, "bottomRadius", 1.0f};
  SoSFFloat height{this, "height", 2.0f};

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  SbBox3f getBounds(SoState const& state) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;

 protected:
  ~SoCone() override = default;
};
