#pragma once

#include "kestrava/fields/SoMFNode.h"

/// The parameters that tell the instances of one shape apart, each a node; a type of its own among fields, as
/// SoMFUniformShaderParameter is.
class SoMFInstanceParameter : public SoMFNode {
  SO_FIELD(SoMFInstanceParameter, SoMField)
  SoMFInstanceParameter() = default;
  using SoMFNode::SoMFNode;
};
