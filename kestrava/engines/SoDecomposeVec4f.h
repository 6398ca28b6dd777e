#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFVec4f.h"

/// Takes vectors apart.
class SoDecomposeVec4f : public SoEngine {
  SO_ENGINE(SoDecomposeVec4f, SoEngine)

  SoMFVec4f vector{this, "vector", SbVec4f()};
  SoMFFloat x{this, "x", 0.f, SoField::EVENT_OUT};
  SoMFFloat y{this, "y", 0.f, SoField::EVENT_OUT};
  SoMFFloat z{this, "z", 0.f, SoField::EVENT_OUT};
  SoMFFloat w{this, "w", 0.f, SoField::EVENT_OUT};

 protected:
  ~SoDecomposeVec4f() override = default;
  void evaluate() override;
};
