#pragma once

#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/nodes/SoNonIndexedShape.h"

/// Points.
class SoPointSet : public SoNonIndexedShape {
  SO_NODE(SoPointSet, SoNonIndexedShape)
  SoSFInt32 numPoints{this, "numPoints", -1}; ///< -1 is all that are left

  void buildMesh(SoState const& state, SoMesh& mesh) const override;

 protected:
  int countCoordinates(int available) const override;
  ~SoPointSet() override = default;
};
