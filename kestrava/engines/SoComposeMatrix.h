#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFMatrix.h"
#include "kestrava/fields/SoMFRotation.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Makes matrices as a transform node does. Inputs with several values are worked off one by one; the last
/// value of a shorter input counts for the rest.
class SoComposeMatrix : public SoEngine {
  SO_ENGINE(SoComposeMatrix, SoEngine)

  SoMFVec3f translation{this, "translation", SbVec3f()};
  SoMFRotation rotation{this, "rotation", SbRotation()};
  SoMFVec3f scaleFactor{this, "scaleFactor", SbVec3f(1, 1, 1)};
  SoMFRotation scaleOrientation{this, "scaleOrientation", SbRotation()};
  SoMFVec3f center{this, "center", SbVec3f()};
  SoMFMatrix matrix{this, "matrix", {}, SoField::EVENT_OUT};

 protected:
  ~SoComposeMatrix() override = default;
  void evaluate() override;
};
