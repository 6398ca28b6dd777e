#pragma once

#include "kestrava/fields/SoSFMatrix.h"
#include "kestrava/nodes/SoTransformation.h"

/// Applies a matrix to what follows.
class SoMatrixTransform : public SoTransformation {
  SO_NODE(SoMatrixTransform, SoTransformation)
  SoSFMatrix matrix{this, "matrix"}; ///< points are row vectors

 protected:
  ~SoMatrixTransform() override = default;
};
