#pragma once

#include <functional>

#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/nodes/SoVertexProperty.h"

/// Base of the shapes that are made from coordinates.
class SoVertexShape : public SoShape {
  SO_ABSTRACT_NODE(SoVertexShape, SoShape)
  SoSFNode vertexProperty{this, "vertexProperty"}; ///< a vertex property of its own, or null

  SbBox3f getBounds(SoState const& state) const override;
  void applyOwnState(SoState& state) const override;
  std::uint64_t getMeshKey(SoState const& state) const override;
  /// The value of the field, null when it is none or a node of another type.
  SoVertexProperty const* getVertexProperty() const;

 protected:
  SoVertexShape() = default;
  /// Calls a function for each of the `count` coordinates that the shape uses, once or more often.
  virtual void forEachUsedCoordinate(int count, std::function<void(int)> const& function) const = 0;
  ~SoVertexShape() override = default;
};
