#pragma once

#include "kestrava/base/SbMatrix.h"
#include "kestrava/fields/SoMFInstanceParameter.h"
#include "kestrava/fields/SoMFMatrix.h"
#include "kestrava/nodes/SoGroup.h"

/// Shows its children once for each of its matrices.
class SoMultipleCopy : public SoGroup {
  SO_NODE(SoMultipleCopy, SoGroup)
  SoMFMatrix matrix{this, "matrix", SbMatrix::identity()}; ///< one copy each
  SoMFInstanceParameter instanceParameter{this,
                                          "instanceParameter"}; ///< what a shader is to know of each copy

 protected:
  ~SoMultipleCopy() override = default;
};
