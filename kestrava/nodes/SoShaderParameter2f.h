#pragma once

#include "kestrava/fields/SoSFVec2f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of a vec2 in a shader.
class SoShaderParameter2f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter2f, SoUniformShaderParameter)
  SoSFVec2f value{this, "value"};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofFloats(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter2f() override = default;
};
