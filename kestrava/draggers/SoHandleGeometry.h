#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "kestrava/base/SbVec3f.h"

class SoGroup;

/// Collects the simple bodies that handles of draggers are made of, and turns them into one shape.
///
///     SoHandleGeometry().arrow(SbVec3f(), SbVec3f(1, 0, 0)).addTo(handle);
class SoHandleGeometry {
 public:
  /// Radii and half sizes in the coordinates of the dragger.
  SoHandleGeometry& rod(SbVec3f const& from, SbVec3f const& to, float radius);
  SoHandleGeometry& cone(SbVec3f const& base, SbVec3f const& tip, float radius);
  /// A rod with a cone at its end; the tip is at `to`.
  SoHandleGeometry& arrow(SbVec3f const& from, SbVec3f const& to, float radius = 0.02f);
  SoHandleGeometry& box(SbVec3f const& center, SbVec3f const& halfSize);
  SoHandleGeometry& ball(SbVec3f const& center, float radius);
  /// A thin tube around an axis of unit length.
  SoHandleGeometry& ring(SbVec3f const& center, SbVec3f const& axis, float radius, float tube);
  /// A strip of a sphere's or cylinder's wall around an axis of unit length.
  SoHandleGeometry& band(SbVec3f const& axis, float radius, float halfWidth);
  /// Four corners in order.
  SoHandleGeometry& quad(SbVec3f const& a, SbVec3f const& b, SbVec3f const& c, SbVec3f const& d);
  /// Through the points; a line is easier to point at than a thin body.
  SoHandleGeometry& line(std::initializer_list<SbVec3f> points);

  /// Appends the shapes to a group.
  void addTo(SoGroup* group) const;

 private:
  int vertex(SbVec3f const& point, SbVec3f const& normal);
  void face(std::initializer_list<int> corners);
  void wall(SbVec3f const& from, SbVec3f const& to, float fromRadius, float toRadius, bool closed);

  std::vector<SbVec3f> m_points, m_normals, m_linePoints;
  std::vector<std::int32_t> m_faces, m_lines;
};
