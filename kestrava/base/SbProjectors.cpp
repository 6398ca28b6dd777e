#include <cmath>

#include "kestrava/base/SbCylinderProjector.h"
#include "kestrava/base/SbLineProjector.h"
#include "kestrava/base/SbPlaneProjector.h"
#include "kestrava/base/SbSphereProjector.h"

namespace {

/// Where a ray meets a circle or sphere of that radius around the origin. `start` and `along` (unit length)
/// are offsets from the origin in the space that counts. A ray that passes by meets it beyond its edge.
SbVec3f meetRound(SbVec3f const& start, SbVec3f const& along, float radius, bool front) {
  SbVec3f const nearest = start - along * start.dot(along);
  float const distance = nearest.length();
  if (distance <= radius) {
    float const half = std::sqrt(std::max(0.0f, radius * radius - distance * distance));
    return nearest + along * (front ? -half : half);
  }
  float const beyond = (distance - radius) / radius;
  return nearest * (radius / distance * std::cos(beyond)) +
         along * (radius * std::sin(beyond) * (front ? 1.0f : -1.0f));
}

} // namespace

bool SbProjector::setWorkingSpace(SbMatrix const& toWorld) {
  bool exists = false;
  SbMatrix const inverse = toWorld.inverse(&exists);
  if (!exists) return false;
  m_toWorld = toWorld;
  m_fromWorld = inverse;
  return true;
}

SbLine SbProjector::getLine(SbVec2f const& screen) const {
  SbLine const world = m_volume.projectPointToLine(screen);
  SbLine line;
  line.setPosDir(m_fromWorld.multVecMatrix(world.getPosition()),
                 m_fromWorld.multDirMatrix(world.getDirection()));
  return line;
}

bool SbProjector::isInFront(SbVec3f const& point) const {
  SbVec3f screen;
  return m_volume.projectToScreen(m_toWorld.multVecMatrix(point), screen);
}

bool SbLineProjector::project(SbVec2f const& screen, SbVec3f& point) const {
  SbLine const ray = m_volume.projectPointToLine(screen);
  SbVec3f const from = m_toWorld.multVecMatrix(m_line.getPosition());
  SbVec3f const along = m_toWorld.multDirMatrix(m_line.getDirection());
  float const length = along.length();
  SbLine world;
  world.setPosDir(from, along);
  SbVec3f onLine, onRay;
  if (!(length > 0) || !world.getClosestPoints(ray, onLine, onRay)) return false;
  SbVec3f const found = m_line.getPoint((onLine - from).dot(world.getDirection()) / length);
  if (!isInFront(found)) return false;
  point = found;
  return true;
}

bool SbPlaneProjector::project(SbVec2f const& screen, SbVec3f& point) const {
  SbVec3f found;
  if (!m_plane.intersect(getLine(screen), found) || !isInFront(found)) return false;
  point = found;
  return true;
}

bool SbSphereProjector::project(SbVec2f const& screen, SbVec3f& point) const {
  SbLine const ray = getLine(screen);
  point = m_sphere.center +
          meetRound(ray.getPosition() - m_sphere.center, ray.getDirection(), m_sphere.radius, m_front);
  return true;
}

bool SbCylinderProjector::project(SbVec2f const& screen, SbVec3f& point) const {
  SbLine const ray = getLine(screen);
  SbVec3f const axis = m_axis.getDirection();
  SbVec3f const start = ray.getPosition() - m_axis.getPosition();
  SbVec3f across = ray.getDirection() - axis * ray.getDirection().dot(axis);
  float const steepness = across.normalize(); // of the ray against the axis
  if (steepness < 1e-4f) return false;
  SbVec3f const flatStart = start - axis * start.dot(axis);
  SbVec3f const flat = meetRound(flatStart, across, m_radius, m_front);
  // As far along the ray as the flat picture says; this gives the place along the axis.
  float const length = (flat - flatStart).dot(across) / steepness;
  point = m_axis.getPosition() + flat + axis * (start + ray.getDirection() * length).dot(axis);
  return true;
}

SbRotation SbCylinderProjector::rotationAbout(SbLine const& axis, SbVec3f const& from, SbVec3f const& to) {
  SbVec3f const direction = axis.getDirection();
  SbVec3f const a = from - axis.getClosestPoint(from), b = to - axis.getClosestPoint(to);
  return SbRotation(direction, std::atan2(a.cross(b).dot(direction), a.dot(b)));
}
