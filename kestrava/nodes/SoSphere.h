#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// A sphere around the origin.
class SoSphere : public SoShape {
  SO_NODE(SoSphere, SoShape)
  SoSFFloat radius{this, "radius", 1.0f};

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  SbBox3f getBounds(SoState const& state) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;

 protected:
  ~SoSphere() override = default;
};
