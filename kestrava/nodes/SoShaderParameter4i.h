#pragma once

#include "kestrava/fields/SoSFVec4i32.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of an ivec4 in a shader.
class SoShaderParameter4i : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter4i, SoUniformShaderParameter)
  SoSFVec4i32 value{this, "value"};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofIntegers(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter4i() override = default;
};
