#pragma once

#include "kestrava/nodes/SoIndexedShape.h"

/// Lines of any number of points.
class SoIndexedLineSet : public SoIndexedShape {
  SO_NODE(SoIndexedLineSet, SoIndexedShape)
  void buildMesh(SoState const& state, SoMesh& mesh) const override;

 protected:
  ~SoIndexedLineSet() override = default;
};
