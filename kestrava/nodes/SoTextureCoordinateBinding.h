#pragma once

#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoNode.h"

/// How the texture coordinates are spread over the shapes that follow.
class SoTextureCoordinateBinding : public SoNode {
  SO_NODE(SoTextureCoordinateBinding, SoNode)
  enum Binding { PER_VERTEX, PER_VERTEX_INDEXED };
  static std::vector<SoEnumSymbol> const& bindings() {
    static std::vector<SoEnumSymbol> const symbols{{"PER_VERTEX", PER_VERTEX},
                                                   {"PER_VERTEX_INDEXED", PER_VERTEX_INDEXED}};
    return symbols;
  }

  SoSFEnum value{this, "value", PER_VERTEX_INDEXED, bindings()};

 protected:
  ~SoTextureCoordinateBinding() override = default;
};
