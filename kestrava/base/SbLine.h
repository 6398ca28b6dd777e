#pragma once

#include "kestrava/base/SbVec3f.h"

/// An endless line: a point on it and a direction of unit length. The z axis by default.
class SbLine {
 public:
  constexpr SbLine() = default;
  /// Through two points, from the first to the second.
  SbLine(SbVec3f const& from, SbVec3f const& to) { setPosDir(from, to - from); }
  /// A zero direction leaves the direction as it was.
  void setPosDir(SbVec3f const& position, SbVec3f direction) {
    m_position = position;
    if (direction.normalize() > 0) m_direction = direction;
  }

  SbVec3f const& getPosition() const { return m_position; }
  SbVec3f const& getDirection() const { return m_direction; }
  SbVec3f getPoint(float distance) const { return m_position + m_direction * distance; }

  SbVec3f getClosestPoint(SbVec3f const& point) const {
    return getPoint((point - m_position).dot(m_direction));
  }
  /// The points where two lines come closest; false when they are parallel.
  bool getClosestPoints(SbLine const& other, SbVec3f& own, SbVec3f& others) const;

 private:
  SbVec3f m_position;
  SbVec3f m_direction = {0.f, 0.f, 1.f};
};
