#pragma once

#include "kestrava/fields/SoMFVec4f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The values of an array of vec4 in a shader.
class SoShaderParameterArray4f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterArray4f, SoUniformShaderParameter)
  SoMFVec4f value{this, "value"};

  SoUniformValue getUniformValue() const override {
    return SoUniformValue::ofFloats(value.getValues(), value.getNumValues());
  }

 protected:
  ~SoShaderParameterArray4f() override = default;
};
