#pragma once

#include "kestrava/fields/SoSFVec3i32.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of an ivec3 in a shader.
class SoShaderParameter3i : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter3i, SoUniformShaderParameter)
  SoSFVec3i32 value{this, "value"};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofIntegers(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter3i() override = default;
};
