#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFMatrix.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Applies matrices to vectors. Inputs with several values are worked off one by one; the last value of a
/// shorter input counts for the rest.
class SoTransformVec3f : public SoEngine {
  SO_ENGINE(SoTransformVec3f, SoEngine)

  SoMFVec3f vector{this, "vector", SbVec3f()};
  SoMFMatrix matrix{this, "matrix", SbMatrix()};
  SoMFVec3f point{this, "point", {}, SoField::EVENT_OUT}; ///< the vector as a point
  SoMFVec3f direction{
      this, "direction", {}, SoField::EVENT_OUT}; ///< the vector as a direction: no translation
  SoMFVec3f normalDirection{this, "normalDirection", {}, SoField::EVENT_OUT}; ///< the same with length 1

 protected:
  ~SoTransformVec3f() override = default;
  void evaluate() override;
};
