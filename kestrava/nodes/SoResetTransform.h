#pragma once

#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/nodes/SoTransformation.h"

/// Forgets the transformation, or the bounding box, of what came before.
class SoResetTransform : public SoTransformation {
  SO_NODE(SoResetTransform, SoTransformation)
  enum What { TRANSFORM = 1, BBOX = 2 };
  static std::vector<SoEnumSymbol> const& whats() {
    static std::vector<SoEnumSymbol> const symbols{{"TRANSFORM", TRANSFORM}, {"BBOX", BBOX}};
    return symbols;
  }

  SoSFBitMask whatToReset{this, "whatToReset", TRANSFORM, whats()};

 protected:
  ~SoResetTransform() override = default;
};
