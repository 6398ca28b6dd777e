#pragma once

#include "kestrava/fields/SoMFInt32.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The values of an array of int in a shader.
class SoShaderParameterArray1i : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterArray1i, SoUniformShaderParameter)
  SoMFInt32 value{this, "value"};

  SoUniformValue getUniformValue() const override {
    return SoUniformValue::ofIntegers(value.getValues(), value.getNumValues());
  }

 protected:
  ~SoShaderParameterArray1i() override = default;
};
