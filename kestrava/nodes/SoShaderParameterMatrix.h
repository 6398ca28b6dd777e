#pragma once

#include "kestrava/fields/SoSFMatrix.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of a mat4, or of a mat3 in its upper left, in a shader. The shader multiplies it from the left
/// with a column vector to get what multiplying a row vector with the matrix gives here.
class SoShaderParameterMatrix : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterMatrix, SoUniformShaderParameter)
  SoSFMatrix value{this, "value", SbMatrix::identity()};

  SoUniformValue getUniformValue() const override {
    SoUniformValue result = SoUniformValue::ofFloats(&value.getValue(), 1);
    result.kind = SoUniformValue::MATRICES;
    return result;
  }

 protected:
  ~SoShaderParameterMatrix() override = default;
};
