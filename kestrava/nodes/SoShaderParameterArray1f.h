#pragma once

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The values of an array of float in a shader.
class SoShaderParameterArray1f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterArray1f, SoUniformShaderParameter)
  SoMFFloat value{this, "value"};

  SoUniformValue getUniformValue() const override {
    return SoUniformValue::ofFloats(value.getValues(), value.getNumValues());
  }

 protected:
  ~SoShaderParameterArray1f() override = default;
};
