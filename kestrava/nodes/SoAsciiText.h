#pragma once

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// Flat text in the scene.
class SoAsciiText : public SoShape {
  SO_NODE(SoAsciiText, SoShape)
  enum Justification { LEFT, RIGHT, CENTER };
  static std::vector<SoEnumSymbol> const& justifications() {
    static std::vector<SoEnumSymbol> const symbols{{"LEFT", LEFT}, {"RIGHT", RIGHT}, {"CENTER", CENTER}};
    return symbols;
  }

  SoMFString string{this, "string", SbString()}; ///< one line each
  SoSFFloat spacing{this, "spacing", 1.0f};      ///< between lines, in heights of the font
  SoSFEnum justification{this, "justification", LEFT, justifications()};
  SoMFFloat width{this, "width", 0.0f}; ///< of each line; 0 is its natural width

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;

 protected:
  ~SoAsciiText() override = default;
};
