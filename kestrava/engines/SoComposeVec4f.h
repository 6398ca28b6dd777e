#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFVec4f.h"

/// Makes vectors from their components. Inputs with several values are worked off one by one; the last value
/// of a shorter input counts for the rest.
class SoComposeVec4f : public SoEngine {
  SO_ENGINE(SoComposeVec4f, SoEngine)

  SoMFFloat x{this, "x", 0.f};
  SoMFFloat y{this, "y", 0.f};
  SoMFFloat z{this, "z", 0.f};
  SoMFFloat w{this, "w", 0.f};
  SoMFVec4f vector{this, "vector", {}, SoField::EVENT_OUT};

 protected:
  ~SoComposeVec4f() override = default;
  void evaluate() override;
};
