#pragma once

#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The value of a vec3 in a shader.
class SoShaderParameter3f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameter3f, SoUniformShaderParameter)
  SoSFVec3f value{this, "value"};

  SoUniformValue getUniformValue() const override { return SoUniformValue::ofFloats(&value.getValue(), 1); }

 protected:
  ~SoShaderParameter3f() override = default;
};
