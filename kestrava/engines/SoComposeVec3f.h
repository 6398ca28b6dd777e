#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFVec3f.h"

/// Makes vectors from their components. Inputs with several values are worked off one by one; the last value
/// of a shorter input counts for the rest.
class SoComposeVec3f : public SoEngine {
  SO_ENGINE(SoComposeVec3f, SoEngine)

  SoMFFloat x{this, "x", 0.f};
  SoMFFloat y{this, "y", 0.f};
  SoMFFloat z{this, "z", 0.f};
  SoMFVec3f vector{this, "vector", {}, SoField::EVENT_OUT};

 protected:
  ~SoComposeVec3f() override = default;
  void evaluate() override;
};
