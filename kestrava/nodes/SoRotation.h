#pragma once

#include "kestrava/fields/SoSFRotation.h"
#include "kestrava/nodes/SoTransformation.h"

/// Turns what follows about the origin.
class SoRotation : public SoTransformation {
  SO_NODE(SoRotation, SoTransformation)
  SoSFRotation rotation{this, "rotation"};

 protected:
  ~SoRotation() override = default;
};
