#pragma once

#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// The values of an array of vec3 in a shader.
class SoShaderParameterArray3f : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterArray3f, SoUniformShaderParameter)
  SoMFVec3f value{this, "value"};

  SoUniformValue getUniformValue() const override {
    return SoUniformValue::ofFloats(value.getValues(), value.getNumValues());
  }

 protected:
  ~SoShaderParameterArray3f() override = default;
};
