#pragma once

#include "kestrava/fields/SoMFMatrix.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The values of an array of mat4, see SoShaderParameterMatrix.
class SoShaderParameterMatrixArray : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterMatrixArray, SoUniformShaderParameter)
  SoMFMatrix value{this, "value"};

  SoUniformValue getUniformValue() const override {
    SoUniformValue result = SoUniformValue::ofFloats(value.getValues(), value.getNumValues());
    result.kind = SoUniformValue::MATRICES;
    return result;
  }

 protected:
  ~SoShaderParameterMatrixArray() override = default;
};
