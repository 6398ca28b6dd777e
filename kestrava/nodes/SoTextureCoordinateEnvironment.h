#pragma once

#include "kestrava/nodes/SoTextureCoordinateFunction.h"

/// Shows the texture as if the surface reflected it.
class SoTextureCoordinateEnvironment : public SoTextureCoordinateFunction {
  SO_NODE(SoTextureCoordinateEnvironment, SoTextureCoordinateFunction)

 protected:
  ~SoTextureCoordinateEnvironment() override = default;
};
