#pragma once

#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of an int, uint or bool in a shader.
class SoShaderParameter1i : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter1i, SoUniformShaderParameter)
  SoSFInt32 value{this, "value", 0};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofIntegers(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter1i() override = default;
};
