#pragma once

#include "kestrava/fields/SoMFInt32.h"
#include "kestrava/nodes/SoNonIndexedShape.h"

/// Lines of any number of points.
class SoLineSet : public SoNonIndexedShape {
  SO_NODE(SoLineSet, SoNonIndexedShape)
  SoMFInt32 numVertices{this, "numVertices", -1}; ///< corners of each; -1 is all that are left

  void buildMesh(SoState const& state, SoMesh& mesh) const override;

 protected:
  int countCoordinates(int available) const override;
  ~SoLineSet() override = default;
};
