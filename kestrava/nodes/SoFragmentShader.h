#pragma once

#include "kestrava/nodes/SoShaderObject.h"

/// The stage of a shader program that colours the pixels.
class SoFragmentShader : public SoShaderObject {
  SO_NODE(SoFragmentShader, SoShaderObject)

 protected:
  ~SoFragmentShader() override = default;
};
