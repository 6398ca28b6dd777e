#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoShape.h"

/// A box around the origin. Its parts, for materials: front, back, left, right, top, bottom.
class SoCube : public SoShape {
  SO_NODE(SoCube, SoShape)
  SoSFFloat width{this, "width", 2.0f};   ///< along x
  SoSFFloat height{this, "height", 2.0f}; ///< along y
  SoSFFloat depth{this, "depth", 2.0f};   ///< along z

  void buildMesh(SoState const& state, SoMesh& mesh) const override;
  SbBox3f getBounds(SoState const& state) const override;

 protected:
  ~SoCube() override = default;
};
