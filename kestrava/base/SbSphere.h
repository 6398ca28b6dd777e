#pragma once

#include "kestrava/base/SbVec3f.h"

class SbLine;

/// A ball: centre and radius.
struct SbSphere {
  SbVec3f center;
  float radius = 0;

  /// The smallest sphere around the corners of a box; radius 0 for an empty box.
  static SbSphere around(SbBox3f const& box);
  bool contains(SbVec3f const& point) const { return (point - center).length() <= radius; }
  /// The points where a line goes in and comes out, also behind its position; false when it misses.
  bool intersect(SbLine const& line, SbVec3f& enter, SbVec3f& exit) const;

  friend constexpr bool operator==(SbSphere const&, SbSphere const&) = default;
  bool equals(SbSphere const& other, float tolerance) const {
    return center.equals(other.center, tolerance) && std::abs(radius - other.radius) <= tolerance;
  }
};
