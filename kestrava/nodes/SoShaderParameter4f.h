#pragma once

#include "kestrava/fields/SoSFVec4f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of a vec4 in a shader.
class SoShaderParameter4f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter4f, SoUniformShaderParameter)
  SoSFVec4f value{this, "value"};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofFloats(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter4f() override = default;
};
