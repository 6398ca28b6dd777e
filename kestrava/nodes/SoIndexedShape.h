#pragma once

#include "kestrava/fields/SoMFInt32.h"
#include "kestrava/nodes/SoVertexShape.h"

/// Base of the shapes that choose their coordinates by index; -1 ends a face, line or strip. An index field
/// that is empty takes the indices of coordIndex.
class SoIndexedShape : public SoVertexShape {
  SO_ABSTRACT_NODE(SoIndexedShape, SoVertexShape)
  SoMFInt32 coordIndex{this, "coordIndex"};
  SoMFInt32 materialIndex{this, "materialIndex"};
  SoMFInt32 normalIndex{this, "normalIndex"};
  SoMFInt32 textureCoordIndex{this, "textureCoordIndex"};

 protected:
  SoIndexedShape() = default;
  void forEachUsedCoordinate(int count, std::function<void(int)> const& function) const override;
  ~SoIndexedShape() override = default;
};
