#pragma once

#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoTexture3.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// An image with depth that a shader reads as a sampler3D.
class SoShaderParameterSampler3D : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterSampler3D, SoUniformShaderParameter)
  SoSFNode texture{this, "texture"}; ///< a Texture3; null: the texture that the scene sets at the shape

  SoUniformValue getUniformValue() const override {
    SoUniformValue result;
    result.kind = SoUniformValue::IMAGE;
    auto const* const node = dynamic_cast<SoTexture3*>(texture.getValue());
    if (!node) return result;
    result.image = node->getImage();
    result.repeat[0] = node->wrapS.getValue() == SoTexture3::REPEAT;
    result.repeat[1] = node->wrapT.getValue() == SoTexture3::REPEAT;
    result.repeat[2] = node->wrapR.getValue() == SoTexture3::REPEAT;
    return result;
  }

 protected:
  ~SoShaderParameterSampler3D() override = default;
};
