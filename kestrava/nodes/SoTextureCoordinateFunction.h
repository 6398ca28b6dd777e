#pragma once

#include "kestrava/nodes/SoNode.h"

/// Base of the nodes that compute texture coordinates from points.
class SoTextureCoordinateFunction : public SoNode {
  SO_ABSTRACT_NODE(SoTextureCoordinateFunction, SoNode)

 protected:
  SoTextureCoordinateFunction() = default;
  ~SoTextureCoordinateFunction() override = default;
};
