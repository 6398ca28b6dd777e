#pragma once

#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// Text in the plane of the screen, upright and of constant size, the font's size being pixels (at most 400); it stands
/// at a point of the scene, the origin, which decides what hides it. Its bounds, and its mesh of outlines, are those for
/// the camera met before; without any the bounds are the point, and there is no mesh.
class SoText2 : public SoShape {
  SO_NODE(SoText2, SoShape)
  enum Justification { LEFT, RIGHT, CENTER };
  static std::vector<SoEnumSymbol> const& justifications() {
    static std::vector<SoEnumSymbol> const symbols{{"LEFT", LEFT}, {"RIGHT", RIGHT}, {"CENTER", CENTER}};
    return symbols;
  }

  SoMFString string{this, "string", SbString()}; ///< one line each
  SoSFFloat spacing{this, "spacing", 1.0f};      ///< between lines, in heights of the font
  SoSFEnum justification{this, "justification", LEFT, justifications()};

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  SbBox3f getBounds(SoState const& state) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;

 protected:
  ~SoText2() override = default;
};
