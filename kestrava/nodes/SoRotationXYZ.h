#pragma once

#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoTransformation.h"

/// Turns what follows about one of the axes.
class SoRotationXYZ : public SoTransformation {
  SO_NODE(SoRotationXYZ, SoTransformation)
  enum Axis { X, Y, Z };
  static std::vector<SoEnumSymbol> const& axes() {
    static std::vector<SoEnumSymbol> const symbols{{"X", X}, {"Y", Y}, {"Z", Z}};
    return symbols;
  }

  SoSFEnum axis{this, "axis", X, axes()};
  SoSFFloat angle{this, "angle", 0.0f}; ///< radians

 protected:
  ~SoRotationXYZ() override = default;
};
