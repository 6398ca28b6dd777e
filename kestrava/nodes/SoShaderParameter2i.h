#pragma once

#include "kestrava/fields/SoSFVec2i32.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of an ivec2 in a shader.
class SoShaderParameter2i : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter2i, SoUniformShaderParameter)
  SoSFVec2i32 value{this, "value"};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofIntegers(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter2i() override = default;
};
