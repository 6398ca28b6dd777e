// The small shapes: SbLine, SbPlane, SbSphere.

#include <cmath>

#include "kestrava/base/SbBox3f.h"
#include "kestrava/base/SbLine.h"
#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbPlane.h"
#include "kestrava/base/SbSphere.h"
#include "kestrava/base/SbVec3d.h"

bool SbLine::getClosestPoints(SbLine const& other, SbVec3f& own, SbVec3f& others) const {
  SbVec3d const a(m_direction), b(other.m_direction), between(other.m_position - m_position);
  SbVec3d const normal = a.cross(b);
  double const square = normal.dot(normal);
  if (square < 1e-12) return false;
  own = getPoint(static_cast<float>(between.cross(b).dot(normal) / square));
  others = other.getPoint(static_cast<float>(between.cross(a).dot(normal) / square));
  return true;
}

SbPlane::SbPlane(SbVec3f const& normal, float distance) : m_distance(distance) {
  float const length = normal.length();
  if (!(length > 0) || !std::isfinite(length)) return;
  // A normal that is a unit vector but for rounding stays bit for bit, so that what was written reads back.
  m_normal = std::abs(length - 1) <= 1e-6f ? normal : normal / length;
}

SbPlane::SbPlane(SbVec3f const& normal, SbVec3f const& point) : SbPlane(normal, 0.f) {
  m_distance = m_normal.dot(point);
}

SbPlane::SbPlane(SbVec3f const& a, SbVec3f const& b, SbVec3f const& c) : SbPlane((b - a).cross(c - a), a) {}

bool SbPlane::intersect(SbLine const& line, SbVec3f& point) const {
  float const cosine = m_normal.dot(line.getDirection());
  if (std::abs(cosine) < 1e-7f) return false;
  point = line.getPoint(-getDistance(line.getPosition()) / cosine);
  return true;
}

void SbPlane::transform(SbMatrix const& matrix) {
  SbVec3f const point = matrix.multVecMatrix(m_normal * m_distance);
  *this = SbPlane(matrix.inverse().transpose().multDirMatrix(m_normal), point);
}

SbSphere SbSphere::around(SbBox3f const& box) { return {box.getCenter(), box.getSize().length() / 2}; }

bool SbSphere::intersect(SbLine const& line, SbVec3f& enter, SbVec3f& exit) const {
  SbVec3f const middle = line.getClosestPoint(center);
  double const distance = (middle - center).length();
  if (!(distance <= radius)) return false;
  auto const half = static_cast<float>(std::sqrt(static_cast<double>(radius) * radius - distance * distance));
  enter = middle - line.getDirection() * half;
  exit = middle + line.getDirection() * half;
  return true;
}
