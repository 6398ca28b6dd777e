#pragma once

#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"

/// An image that a shader reads as a sampler2D.
class SoShaderParameterSampler2D : public SoUniformShaderParameter {
  SO_NODE(SoShaderParameterSampler2D, SoUniformShaderParameter)
  SoSFNode texture{this, "texture"}; ///< a Texture2; null: the texture that the scene sets at the shape

  SoUniformValue getUniformValue() const override {
    SoUniformValue result;
    result.kind = SoUniformValue::IMAGE;
    auto const* const node = dynamic_cast<SoTexture2*>(texture.getValue());
    if (!node) return result;
    result.image = node->getImage();
    result.repeat[0] = node->wrapS.getValue() == SoTexture2::REPEAT;
    result.repeat[1] = node->wrapT.getValue() == SoTexture2::REPEAT;
    return result;
  }

 protected:
  ~SoShaderParameterSampler2D() override = default;
};
