#pragma once

#include "kestrava/nodes/SoShaderObject.h"

/// The stage of a shader program that places the corners.
class SoVertexShader : public SoShaderObject {
  SO_NODE(SoVertexShader, SoShaderObject)

 protected:
  ~SoVertexShader() override = default;
};
