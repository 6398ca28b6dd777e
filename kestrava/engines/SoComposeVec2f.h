#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFVec2f.h"

/// Makes vectors from their components. Inputs with several values are worked off one by one; the last value
/// of a shorter input counts for the rest.
class SoComposeVec2f : public SoEngine {
  SO_ENGINE(SoComposeVec2f, SoEngine)

  SoMFFloat x{this, "x", 0.f};
  SoMFFloat y{this, "y", 0.f};
  SoMFVec2f vector{this, "vector", {}, SoField::EVENT_OUT};

 protected:
  ~SoComposeVec2f() override = default;
  void evaluate() override;
};
