#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Takes vectors apart.
class SoDecomposeVec3f : public SoEngine {
  SO_ENGINE(SoDecomposeVec3f, SoEngine)

  SoMFVec3f vector{this, "vector", SbVec3f()};
  SoMFFloat x{this, "x", 0.f, SoField::EVENT_OUT};
  SoMFFloat y{this, "y", 0.f, SoField::EVENT_OUT};
  SoMFFloat z{this, "z", 0.f, SoField::EVENT_OUT};

 protected:
  ~SoDecomposeVec3f() override = default;
  void evaluate() override;
};
