#pragma once

#include "kestrava/fields/SoMFNode.h"

/// The parameters of a shader, each a node. It works like SoMFNode but is a type of its own among fields: who
/// looks for fields of general nodes does not mean it.
class SoMFUniformShaderParameter : public SoMFNode {
  SO_FIELD(SoMFUniformShaderParameter, SoMField)
  SoMFUniformShaderParameter() = default;
  using SoMFNode::SoMFNode;

  SoNode* getShaderParameter(int index) const { return getNode(index); }
  /// First index of a parameter, -1 when it is not there.
  int findShaderParameter(SoNode const* parameter) const { return findNode(parameter); }
  void addShaderParameter(SoNode* parameter) { addNode(parameter); }
  void insertShaderParameter(SoNode* parameter, int index) { insertNode(parameter, index); }
  void removeShaderParameter(int index) { removeNode(index); }
};
