#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFVec2f.h"

/// Takes vectors apart.
class SoDecomposeVec2f : public SoEngine {
  SO_ENGINE(SoDecomposeVec2f, SoEngine)

  SoMFVec2f vector{this, "vector", SbVec2f()};
  SoMFFloat x{this, "x", 0.f, SoField::EVENT_OUT};
  SoMFFloat y{this, "y", 0.f, SoField::EVENT_OUT};

 protected:
  ~SoDecomposeVec2f() override = default;
  void evaluate() override;
};
