#pragma once

#include "kestrava/fields/SoMFVec2f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The values of an array of vec2 in a shader.
class SoShaderParameterArray2f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterArray2f, SoUniformShaderParameter)
  SoMFVec2f value{this, "value"};

  SoUniformValue getUniformValue() const override {
    return SoUniformValue::ofFloats(value.getValues(), value.getNumValues());
  }

 protected:
  ~SoShaderParameterArray2f() override = default;
};
