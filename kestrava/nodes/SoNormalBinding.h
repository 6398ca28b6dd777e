#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoMaterialBinding.h"
#include "kestrava/nodes/SoNode.h"

/// How the normals are spread over the shapes that follow.
class SoNormalBinding : public SoNode {
  SO_NODE(SoNormalBinding, SoNode)
  using enum SoMaterialBinding::Binding;

  SoSFEnum value{this, "value", PER_VERTEX_INDEXED, SoMaterialBinding::bindings()};
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoNormalBinding() override = default;
};
