#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of a float in a shader.
class SoShaderParameter1f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter1f, SoUniformShaderParameter)
  SoSFFloat value{this, "value", 0.0f};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofFloats(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter1f() override = default;
};
