#include "kestrava/draggers/SoHandleGeometry.h"

#include <cmath>
#include <numbers>

#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoIndexedLineSet.h"
#include "kestrava/nodes/SoVertexProperty.h"

namespace {

constexpr int SLICES = 12, RING_SLICES = 48;

/// Two directions across a direction of unit length; x, y and direction are right-handed.
struct Across {
  explicit Across(SbVec3f const& direction) {
    x = std::abs(direction[0]) < 0.9f ? SbVec3f(1, 0, 0) : SbVec3f(0, 1, 0);
    x = (x - direction * x.dot(direction)).normalized();
    y = direction.cross(x);
  }
  SbVec3f at(float turn) const {
    float const angle = turn * 2 * std::numbers::pi_v<float>;
    return x * std::cos(angle) + y * std::sin(angle);
  }
  SbVec3f x, y;
};

float part(int i, int of) { return static_cast<float>(i) / static_cast<float>(of); }

} // namespace

int SoHandleGeometry::vertex(SbVec3f const& point, SbVec3f const& normal) {
  m_points.push_back(point);
  m_normals.push_back(normal);
  return static_cast<int>(m_points.size()) - 1;
}

void SoHandleGeometry::face(std::initializer_list<int> corners) {
  m_faces.insert(m_faces.end(), corners);
  m_faces.push_back(-1);
}

void SoHandleGeometry::wall(SbVec3f const& from, SbVec3f const& to, float fromRadius, float toRadius,
                            bool closed) {
  SbVec3f direction = to - from;
  float const length = direction.normalize();
  Across const across(direction);
  int const first = static_cast<int>(m_points.size());
  for (int i = 0; i <= SLICES; ++i) {
    SbVec3f const out = across.at(part(i, SLICES));
    SbVec3f const normal = (out * length + direction * (fromRadius - toRadius)).normalized();
    int const v = vertex(from + out * fromRadius, normal);
    vertex(to + out * toRadius, normal);
    if (i > 0) face({v - 2, v, v + 1, v - 1});
  }
  if (!closed) return;
  int const center = vertex(from, -direction);
  for (int i = 0; i <= SLICES; ++i) {
    int const v = vertex(m_points[first + 2 * i], -direction);
    if (i > 0) face({center, v, v - 1});
  }
}

SoHandleGeometry& SoHandleGeometry::rod(SbVec3f const& from, SbVec3f const& to, float radius) {
  wall(from, to, radius, radius, true);
  return *this;
}

SoHandleGeometry& SoHandleGeometry::cone(SbVec3f const& base, SbVec3f const& tip, float radius) {
  wall(base, tip, radius, 0, true);
  return *this;
}

SoHandleGeometry& SoHandleGeometry::arrow(SbVec3f const& from, SbVec3f const& to, float radius) {
  SbVec3f const neck = to - (to - from).normalized() * (radius * 9);
  rod(from, neck, radius);
  line({from, neck});
  return cone(neck, to, radius * 3.5f);
}

SoHandleGeometry& SoHandleGeometry::box(SbVec3f const& center, SbVec3f const& halfSize) {
  for (int axis = 0; axis < 3; ++axis) {
    for (float side : {-1.0f, 1.0f}) {
      SbVec3f normal, u, v;
      normal[axis] = side;
      u[(axis + 1) % 3] = halfSize[(axis + 1) % 3] * side;
      v[(axis + 2) % 3] = halfSize[(axis + 2) % 3];
      SbVec3f const middle = center + normal * halfSize[axis];
      int const a = vertex(middle - u - v, normal);
      vertex(middle + u - v, normal);
      vertex(middle + u + v, normal);
      vertex(middle - u + v, normal);
      face({a, a + 1, a + 2, a + 3});
    }
  }
  return *this;
}

SoHandleGeometry& SoHandleGeometry::ball(SbVec3f const& center, float radius) {
  int const rows = radius < 0.5f ? 8 : 24, columns = 2 * rows;
  int const first = static_cast<int>(m_points.size());
  for (int row = 0; row <= rows; ++row) {
    float const angle = part(row, rows) * std::numbers::pi_v<float>;
    for (int column = 0; column <= columns; ++column) {
      float const around = part(column, columns) * 2 * std::numbers::pi_v<float>;
      SbVec3f const out(std::sin(angle) * std::cos(around), std::sin(angle) * std::sin(around),
                        std::cos(angle));
      vertex(center + out * radius, out);
    }
  }
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      int const a = first + row * (columns + 1) + column, b = a + columns + 1;
      if (row > 0) face({a, b, a + 1});
      if (row < rows - 1) face({b, b + 1, a + 1});
    }
  }
  return *this;
}

SoHandleGeometry& SoHandleGeometry::ring(SbVec3f const& center, SbVec3f const& axis, float radius,
                                         float tube) {
  constexpr int SIDES = 6;
  Across const across(axis);
  std::int32_t const firstLine = static_cast<std::int32_t>(m_linePoints.size());
  for (int i = 0; i <= RING_SLICES; ++i) {
    SbVec3f const out = across.at(part(i, RING_SLICES));
    m_linePoints.push_back(center + out * radius);
    m_lines.push_back(firstLine + i);
    for (int k = 0; k <= SIDES; ++k) {
      float const angle = part(k, SIDES) * 2 * std::numbers::pi_v<float>;
      SbVec3f const normal = out * std::cos(angle) + axis * std::sin(angle);
      int const v = vertex(center + out * radius + normal * tube, normal);
      if (i > 0 && k > 0) face({v - 1 - (SIDES + 1), v - 1, v, v - (SIDES + 1)});
    }
  }
  m_lines.push_back(-1);
  return *this;
}

SoHandleGeometry& SoHandleGeometry::band(SbVec3f const& axis, float radius, float halfWidth) {
  Across const across(axis);
  for (int i = 0; i <= RING_SLICES; ++i) {
    SbVec3f const out = across.at(part(i, RING_SLICES));
    int const v = vertex(out * radius - axis * halfWidth, out);
    vertex(out * radius + axis * halfWidth, out);
    if (i > 0) face({v - 2, v, v + 1, v - 1});
  }
  return *this;
}

SoHandleGeometry& SoHandleGeometry::quad(SbVec3f const& a, SbVec3f const& b, SbVec3f const& c,
                                         SbVec3f const& d) {
  SbVec3f const normal = (b - a).cross(c - a).normalized();
  int const v = vertex(a, normal);
  vertex(b, normal);
  vertex(c, normal);
  vertex(d, normal);
  face({v, v + 1, v + 2, v + 3});
  return *this;
}

SoHandleGeometry& SoHandleGeometry::line(std::initializer_list<SbVec3f> points) {
  for (SbVec3f const& point : points) {
    m_lines.push_back(static_cast<std::int32_t>(m_linePoints.size()));
    m_linePoints.push_back(point);
  }
  m_lines.push_back(-1);
  return *this;
}

void SoHandleGeometry::addTo(SoGroup* group) const {
  if (!m_faces.empty()) {
    auto* faces = new SoIndexedFaceSet;
    auto* property = new SoVertexProperty;
    property->vertex.setValues(m_points);
    property->normal.setValues(m_normals);
    faces->coordIndex.setValues(m_faces);
    faces->vertexProperty = property;
    group->addChild(faces);
  }
  if (!m_lines.empty()) {
    auto* lines = new SoIndexedLineSet;
    auto* property = new SoVertexProperty;
    property->vertex.setValues(m_linePoints);
    lines->coordIndex.setValues(m_lines);
    lines->vertexProperty = property;
    group->addChild(lines);
  }
}
