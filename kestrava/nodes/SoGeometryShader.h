#pragma once

#include "kestrava/nodes/SoShaderObject.h"

/// The stage of a shader program that makes primitives from primitives.
class SoGeometryShader : public SoShaderObject {
  SO_NODE(SoGeometryShader, SoShaderObject)

 protected:
  ~SoGeometryShader() override = default;
};
