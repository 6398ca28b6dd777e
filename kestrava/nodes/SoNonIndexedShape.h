#pragma once

#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/nodes/SoVertexShape.h"

/// Base of the shapes that take their coordinates in order.
class SoNonIndexedShape : public SoVertexShape {
  SO_ABSTRACT_NODE(SoNonIndexedShape, SoVertexShape)
  SoSFInt32 startIndex{this, "startIndex", 0}; ///< the first coordinate that is used

 protected:
  SoNonIndexedShape() = default;
  void forEachUsedCoordinate(int count, std::function<void(int)> const& function) const override;
  /// How many of the coordinates from startIndex on it uses.
  virtual int countCoordinates(int available) const = 0;
  ~SoNonIndexedShape() override = default;
};
