#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoNode.h"

/// How the materials are spread over the shapes that follow.
class SoMaterialBinding : public SoNode {
  SO_NODE(SoMaterialBinding, SoNode)
  enum Binding {
    OVERALL,
    PER_PART,
    PER_PART_INDEXED,
    PER_FACE,
    PER_FACE_INDEXED,
    PER_VERTEX,
    PER_VERTEX_INDEXED
  };
  static std::vector<SoEnumSymbol> const& bindings() {
    static std::vector<SoEnumSymbol> const symbols{{"OVERALL", OVERALL},
                                                   {"PER_PART", PER_PART},
                                                   {"PER_PART_INDEXED", PER_PART_INDEXED},
                                                   {"PER_FACE", PER_FACE},
                                                   {"PER_FACE_INDEXED", PER_FACE_INDEXED},
                                                   {"PER_VERTEX", PER_VERTEX},
                                                   {"PER_VERTEX_INDEXED", PER_VERTEX_INDEXED}};
    return symbols;
  }

  SoSFEnum value{this, "value", OVERALL, bindings()};
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoMaterialBinding() override = default;
};
