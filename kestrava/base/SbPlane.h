#pragma once

#include "kestrava/base/SbVec3f.h"

class SbLine;
struct SbMatrix;

/// A plane: the points p with normal . p = distance. The normal has unit length and points into the plane's
/// half space. The plane z = 0 by default.
class SbPlane {
 public:
  constexpr SbPlane() = default;
  /// The distance is measured from the origin along the normal, which gets unit length; a zero normal becomes
  /// (0, 0, 1).
  SbPlane(SbVec3f const& normal, float distance);
  SbPlane(SbVec3f const& normal, SbVec3f const& point);
  /// Counter-clockwise as seen from the side that the normal points to.
  SbPlane(SbVec3f const& a, SbVec3f const& b, SbVec3f const& c);

  SbVec3f const& getNormal() const { return m_normal; }
  float getDistanceFromOrigin() const { return m_distance; }
  /// Positive on the side of the normal.
  float getDistance(SbVec3f const& point) const { return m_normal.dot(point) - m_distance; }
  bool isInHalfSpace(SbVec3f const& point) const { return getDistance(point) >= 0; }
  /// False when the line runs parallel to the plane.
  bool intersect(SbLine const& line, SbVec3f& point) const;
  /// Moves the plane along its normal.
  void offset(float distance) { m_distance += distance; }
  /// `matrix` must have an inverse.
  void transform(SbMatrix const& matrix);

  friend constexpr bool operator==(SbPlane const&, SbPlane const&) = default;
  bool equals(SbPlane const& other, float tolerance) const {
    return m_normal.equals(other.m_normal, tolerance) && std::abs(m_distance - other.m_distance) <= tolerance;
  }

 private:
  SbVec3f m_normal = {0.f, 0.f, 1.f};
  float m_distance = 0;
};
