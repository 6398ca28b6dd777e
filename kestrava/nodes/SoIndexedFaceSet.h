#pragma once

#include "kestrava/nodes/SoIndexedShape.h"

/// Polygons of any number of corners.
class SoIndexedFaceSet : public SoIndexedShape {
  SO_NODE(SoIndexedFaceSet, SoIndexedShape)
  void buildMesh(SoState const& state, SoMesh& mesh) const override;

 protected:
  ~SoIndexedFaceSet() override = default;
};
