#pragma once

#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/nodes/SoNonIndexedShape.h"

/// A grid of quadrilaterals, row by row.
class SoQuadMesh : public SoNonIndexedShape {
  SO_NODE(SoQuadMesh, SoNonIndexedShape)
  SoSFInt32 verticesPerColumn{this, "verticesPerColumn", 1}; ///< number of rows
  SoSFInt32 verticesPerRow{this, "verticesPerRow", 1};

  void buildMesh(SoState const& state, SoMesh& mesh) const override;

 protected:
  int countCoordinates(int available) const override;
  ~SoQuadMesh() override = default;
};
