#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFMatrix.h"
#include "kestrava/fields/SoMFRotation.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Finds what gives a matrix in a transform node with a given centre. Inputs with several values are worked
/// off one by one; the last value of a shorter input counts for the rest.
class SoDecomposeMatrix : public SoEngine {
  SO_ENGINE(SoDecomposeMatrix, SoEngine)

  SoMFMatrix matrix{this, "matrix", SbMatrix()};
  SoMFVec3f center{this, "center", SbVec3f()}; ///< about which it turns and scales
  SoMFVec3f translation{this, "translation", {}, SoField::EVENT_OUT};
  SoMFRotation rotation{this, "rotation", {}, SoField::EVENT_OUT};
  SoMFVec3f scaleFactor{this, "scaleFactor", {}, SoField::EVENT_OUT};
  SoMFRotation scaleOrientation{this, "scaleOrientation", {}, SoField::EVENT_OUT};

 protected:
  ~SoDecomposeMatrix() override = default;
  void evaluate() override;
};
