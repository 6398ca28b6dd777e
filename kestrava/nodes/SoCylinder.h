#pragma once

#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// A cylinder around the y axis, its middle at the origin. Its parts, for materials: sides, top, bottom.
class SoCylinder : public SoShape {
  SO_NODE(SoCylinder, SoShape)
  enum Part { SIDES = 1, TOP = 2, BOTTOM = 4, ALL = 7 };
  static std::vector<SoEnumSymbol> const& allParts() {
    static std::vector<SoEnumSymbol> const symbols{{"SIDES", SIDES}, {"TOP", TOP}, {"BOTTOM", BOTTOM}};
    return symbols;
  }

  SoSFBitMask parts{this, "parts", ALL, allParts()};
  SoSFFloat radius{this, "radius", 1.0f};
  SoSFFloat height{this, "height", 2.0f};

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  SbBox3f getBounds(SoState const& state) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;

 protected:
  ~SoCylinder() override = default;
};
