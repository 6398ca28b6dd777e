#pragma once

#include "kestrava/nodes/SoIndexedShape.h"

/// Strips of triangles.
class SoIndexedTriangleStripSet : public SoIndexedShape {
  SO_NODE(SoIndexedTriangleStripSet, SoIndexedShape)
  void buildMesh(SoState const& state, SoMesh& mesh) const override;

 protected:
  ~SoIndexedTriangleStripSet() override = default;
};
