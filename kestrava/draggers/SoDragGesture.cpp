#include "kestrava/draggers/SoDragGesture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kestrava/base/SbCylinderProjector.h"
#include "kestrava/base/SbLineProjector.h"
#include "kestrava/base/SbPlaneProjector.h"
#include "kestrava/base/SbSphereProjector.h"

SbMatrix SoPlacement::getMatrix() const {
  SbMatrix matrix;
  matrix.setTransform(translation, rotation, scaleFactor, scaleOrientation, center);
  return matrix;
}

SbMatrix SoPlacement::getRigidMatrix() const {
  SbMatrix matrix;
  matrix.setTransform(translation, rotation, SbVec3f(1, 1, 1), SbRotation(), center);
  return matrix;
}

void SoPlacement::moveTo(SbVec3f const& point, SbVec3f const& wanted) {
  SbVec3f const by = wanted - getMatrix().multVecMatrix(point);
  // What rounding alone has moved stays.
  if (by.length() > 1e-6f * (1 + wanted.length())) translation += by;
}

namespace {

SbVec3f axisVector(int axis) {
  SbVec3f vector;
  vector[axis] = 1;
  return vector;
}

SbVec2f screenOf(SoDragGesture::Pointer const& pointer) { return pointer.region.normalize(pointer.pixel); }

/// Factors below this would flatten what is scaled, and nothing could be grabbed any more.
constexpr float SMALLEST_FACTOR = 1e-3f;

float factorOf(float from, float to) {
  if (std::abs(from) < 1e-6f) return 1;
  return std::max(to / from, SMALLEST_FACTOR);
}

} // namespace

bool SoDragGesture::begin(Start const& start) {
  m_start = start;
  m_axis = -1;
  // Turns happen after scaling: what is scaled unevenly is turned as it stands.
  m_space = isTurn() ? start.placement.getRigidMatrix() : start.fromHandles;
  m_toRoot = m_space * start.toRoot;
  bool exists = false;
  m_fromRoot = m_toRoot.inverse(&exists);
  if (!exists) return false;
  m_grabbed = m_fromRoot.multVecMatrix(start.picked);
  m_pivot = m_space.inverse().multVecMatrix(start.fromHandles.multVecMatrix(SbVec3f()));
  m_point = getStartPoint();
  return true;
}

SbVec3f SoDragGesture::getStartPoint() const { return m_space.multVecMatrix(m_grabbed); }

bool SoDragGesture::move(Pointer const& pointer, SoPlacement& placement) {
  SoPlacement moved = m_start.placement;
  if (isMove()) {
    SbVec3f from, to;
    if (!movePoint(pointer, from, to)) return false;
    SbVec3f const by = m_space.multDirMatrix(to - from);
    if (m_start.kind == MOVE_CENTER) {
      SbMatrix const matrix = moved.getMatrix();
      moved.center += matrix.inverse().multDirMatrix(by);
      moved.moveTo(moved.center, matrix.multVecMatrix(moved.center));
    } else {
      moved.translation += by;
    }
  } else if (isTurn()) {
    if (!turn(pointer, moved)) return false;
  } else if (m_start.kind == OPEN_CONE) {
    if (!openCone(pointer, moved)) return false;
  } else if (!scale(pointer, moved)) {
    return false;
  }
  placement = moved;
  return true;
}

bool SoDragGesture::onLine(Pointer const& pointer, SbVec3f const& through, SbVec3f const& along,
                           SbVec3f& point) const {
  SbLineProjector projector;
  projector.setViewVolume(pointer.volume);
  SbLine line;
  line.setPosDir(through, along);
  projector.setLine(line);
  return projector.setWorkingSpace(m_toRoot) && projector.project(screenOf(pointer), point);
}

bool SoDragGesture::onPlane(Pointer const& pointer, SbVec3f const& normal, SbVec3f& point) const {
  SbPlaneProjector projector;
  projector.setViewVolume(pointer.volume);
  projector.setPlane(SbPlane(normal, m_grabbed));
  return projector.setWorkingSpace(m_toRoot) && projector.project(screenOf(pointer), point);
}

int SoDragGesture::chooseAxis(Pointer const& pointer) {
  if (m_axis >= 0) return m_axis;
  SbVec2s const size = pointer.region.getViewportSizePixels();
  SbVec2f const moved(static_cast<float>(pointer.pixel[0] - m_start.pointer.pixel[0]),
                      static_cast<float>(pointer.pixel[1] - m_start.pointer.pixel[1]));
  float const distance = moved.length();
  if (distance < static_cast<float>(std::max(m_start.minPixels, 1))) return -1;
  float best = -1;
  for (int axis = 0; axis < 3; ++axis) {
    bool const isAcross = m_start.kind != MOVE_IN_VIEW && m_start.kind != SCALE_EVENLY;
    if (isAcross && std::abs(m_start.axis[axis]) > 0.5f) continue;
    SbVec3f here, there;
    SbVec3f along = m_toRoot.multDirMatrix(axisVector(axis));
    // A short step: far ones may leave what the camera sees.
    along *= 0.01f * (m_start.picked - pointer.volume.getProjectionPoint()).length() /
             std::max(along.length(), 1e-20f);
    if (!pointer.volume.projectToScreen(m_start.picked, here) ||
        !pointer.volume.projectToScreen(m_start.picked + along, there)) {
      continue;
    }
    SbVec2f picture((there[0] - here[0]) * static_cast<float>(size[0]),
                    (there[1] - here[1]) * static_cast<float>(size[1]));
    if (picture.normalize() < 1e-6f) continue;
    float const match = std::abs(picture.dot(moved)) / distance;
    if (match > best) {
      best = match;
      m_axis = axis;
    }
  }
  return m_axis;
}

bool SoDragGesture::isHeldTo(Pointer const& pointer, SbVec3f& axis) {
  int const chosen = chooseAxis(pointer);
  if (chosen >= 0) axis = axisVector(chosen);
  return chosen >= 0;
}

// From where to where the pointer has moved, in the handles' space. Both are projections of the pointer, so
// that nothing moves before it does, also where it was a little beside the handle.
bool SoDragGesture::movePoint(Pointer const& pointer, SbVec3f& from, SbVec3f& to) {
  bool line = m_start.kind == MOVE_ON_LINE;
  SbVec3f axis = m_start.axis;
  bool const inView = m_start.kind == MOVE_IN_VIEW;
  if (!line && pointer.shift) {
    if (!isHeldTo(pointer, axis)) return false;
    line = true;
  } else if (m_start.kind == MOVE_ON_PLANE && pointer.ctrl) {
    line = true;
  } else if (!pointer.shift) {
    m_axis = -1;
  }
  if (inView && !line) {
    // Normals go from the root to this space with the transposed matrix.
    axis = m_toRoot.transpose().multDirMatrix(pointer.volume.getProjectionDirection()).normalized();
  }
  bool const found =
      line ? onLine(m_start.pointer, m_grabbed, axis, from) && onLine(pointer, m_grabbed, axis, to)
           : onPlane(m_start.pointer, axis, from) && onPlane(pointer, axis, to);
  if (found) m_point = m_space.multVecMatrix(m_grabbed + to - from);
  return found;
}

bool SoDragGesture::scale(Pointer const& pointer, SoPlacement& placement) {
  SbVec3f const fixed = pointer.ctrl ? -m_grabbed : SbVec3f();
  SbVec3f factor(1, 1, 1), from, to;
  SbVec3f axis = m_start.axis;
  Kind kind = m_start.kind;
  if (pointer.shift && (kind == SCALE_ON_PLANE || kind == SCALE_FLAT || kind == SCALE_EVENLY)) {
    if (!isHeldTo(pointer, axis)) return false;
    kind = SCALE_ON_LINE;
  } else {
    m_axis = -1;
  }
  if (kind == SCALE_ON_LINE) {
    if (!onLine(m_start.pointer, m_grabbed, axis, from) || !onLine(pointer, m_grabbed, axis, to))
      return false;
    float const f = factorOf((from - fixed).dot(axis), (to - fixed).dot(axis));
    for (int i = 0; i < 3; ++i) factor[i] += std::abs(axis[i]) * (f - 1);
  } else if (kind == SCALE_ON_PLANE) {
    if (!onPlane(m_start.pointer, axis, from) || !onPlane(pointer, axis, to)) return false;
    for (int i = 0; i < 3; ++i) {
      if (std::abs(axis[i]) < 0.5f) factor[i] = factorOf(from[i] - fixed[i], to[i] - fixed[i]);
    }
  } else {
    SbVec3f out = m_grabbed - fixed;
    if (kind == SCALE_FLAT) out -= axis * out.dot(axis);
    if (!onLine(m_start.pointer, m_grabbed, out, from) || !onLine(pointer, m_grabbed, out, to)) return false;
    float const f = factorOf((from - fixed).dot(out), (to - fixed).dot(out));
    for (int i = 0; i < 3; ++i) factor[i] = kind == SCALE_FLAT && std::abs(axis[i]) > 0.5f ? 1 : f;
  }
  m_point = m_space.multVecMatrix(m_grabbed + to - from);

  SbMatrix const before = placement.getMatrix();
  SbVec3f const stays = m_space.multVecMatrix(fixed);
  SbVec3f const inner = before.inverse().multVecMatrix(stays);
  bool const even = factor[0] == factor[1] && factor[1] == factor[2];
  if (even || placement.scaleOrientation.isIdentity()) {
    for (int i = 0; i < 3; ++i) placement.scaleFactor[i] *= factor[i];
  } else {
    // Along other axes than it was scaled before.
    SbMatrix more;
    more.setScale(factor);
    SbVec3f const center = placement.center;
    (more * before)
        .getTransform(placement.translation, placement.rotation, placement.scaleFactor,
                      placement.scaleOrientation, center);
  }
  placement.moveTo(inner, stays);
  return true;
}

bool SoDragGesture::turnAbout(Pointer const& pointer, SbVec3f const& axis, bool flat,
                              SbRotation& rotation) const {
  SbLine line;
  line.setPosDir(m_pivot, axis);
  SbVec3f from, to;
  float const radius = (m_grabbed - line.getClosestPoint(m_grabbed)).length();
  SbLine const ray = m_start.pointer.volume.projectPointToLine(screenOf(m_start.pointer));
  float const steepness =
      std::abs(m_fromRoot.multDirMatrix(ray.getDirection()).normalized().dot(line.getDirection()));
  // A wheel seen edge on is turned as a roller, a roller seen from its end as a wheel.
  if (flat ? steepness > 0.15f : steepness > 0.6f) {
    if (!onPlane(m_start.pointer, axis, from) || !onPlane(pointer, axis, to)) return false;
  } else {
    if (radius < 1e-6f) return false;
    SbCylinderProjector projector;
    projector.setCylinder(line, radius);
    projector.setWorkingSpace(m_toRoot);
    projector.setViewVolume(m_start.pointer.volume);
    SbVec3f behind;
    if (!projector.project(screenOf(m_start.pointer), from)) return false;
    projector.setFront(false);
    projector.project(screenOf(m_start.pointer), behind);
    projector.setFront((from - m_grabbed).length() <= (behind - m_grabbed).length());
    if (!projector.isFront()) from = behind;
    projector.setViewVolume(pointer.volume);
    if (!projector.project(screenOf(pointer), to)) return false;
  }
  if ((to - line.getClosestPoint(to)).length() < 1e-6f) return false;
  rotation = SbCylinderProjector::rotationAbout(line, from, to);
  return true;
}

bool SoDragGesture::turnFreely(Pointer const& pointer, SbRotation& rotation) const {
  float const radius = (m_grabbed - m_pivot).length();
  if (radius < 1e-6f) return false;
  SbSphereProjector projector;
  projector.setSphere({m_pivot, radius});
  projector.setWorkingSpace(m_toRoot);
  projector.setViewVolume(m_start.pointer.volume);
  SbVec3f from, behind, to;
  projector.project(screenOf(m_start.pointer), from);
  projector.setFront(false);
  projector.project(screenOf(m_start.pointer), behind);
  projector.setFront((from - m_grabbed).length() <= (behind - m_grabbed).length());
  if (!projector.isFront()) from = behind;
  projector.setViewVolume(pointer.volume);
  projector.project(screenOf(pointer), to);
  rotation = projector.getRotation(from, to);
  return true;
}

bool SoDragGesture::turn(Pointer const& pointer, SoPlacement& placement) {
  SbRotation by;
  if (m_start.kind != TURN_FREELY) {
    if (!turnAbout(pointer, m_start.axis, m_start.kind == TURN_FLAT, by)) return false;
  } else {
    if (!turnFreely(pointer, by)) return false;
    if (pointer.shift) {
      // About the axis that the free turn comes nearest to once the pointer has moved far enough.
      SbVec2f const moved(static_cast<float>(pointer.pixel[0] - m_start.pointer.pixel[0]),
                          static_cast<float>(pointer.pixel[1] - m_start.pointer.pixel[1]));
      if (m_axis < 0) {
        if (moved.length() < static_cast<float>(std::max(m_start.minPixels, 1))) return false;
        m_axis = 0;
        for (int i = 1; i < 3; ++i) {
          if (std::abs(by.getAxis()[i]) > std::abs(by.getAxis()[m_axis])) m_axis = i;
        }
      }
      if (!turnAbout(pointer, axisVector(m_axis), false, by)) return false;
    } else {
      m_axis = -1;
    }
  }
  SbMatrix const before = placement.getMatrix();
  SbVec3f const stays = m_space.multVecMatrix(m_pivot);
  SbVec3f const inner = before.inverse().multVecMatrix(stays);
  SbMatrix turned;
  turned.setTransform(SbVec3f(), by, SbVec3f(1, 1, 1), SbRotation(), m_pivot);
  m_point = m_space.multVecMatrix(turned.multVecMatrix(m_grabbed));
  placement.rotation = by * placement.rotation;
  placement.moveTo(inner, stays);
  return true;
}

bool SoDragGesture::openCone(Pointer const& pointer, SoPlacement& placement) {
  float const along = m_grabbed.dot(m_start.axis);
  SbVec3f out = m_grabbed - m_start.axis * along, from, to;
  if (along <= 0 || out.normalize() < 1e-6f) return false;
  // In the plane of the axis and the point, or, where that is seen edge on, outwards alone.
  SbVec3f const across = m_start.axis.cross(out);
  SbLine const ray = pointer.volume.projectPointToLine(screenOf(pointer));
  bool const flat = std::abs(m_fromRoot.multDirMatrix(ray.getDirection()).normalized().dot(across)) > 0.25f;
  bool const found =
      flat ? onPlane(m_start.pointer, across, from) && onPlane(pointer, across, to)
           : onLine(m_start.pointer, m_grabbed, out, from) && onLine(pointer, m_grabbed, out, to);
  if (!found) return false;
  // The rim is always as far from the tip.
  float const rim = m_grabbed.length();
  auto const angleAt = [&](SbVec3f const& point) {
    float const radius = std::max(point.dot(out), 0.0f);
    return flat ? std::atan2(radius, point.dot(m_start.axis)) : std::asin(std::min(radius / rim, 1.0f));
  };
  placement.angle =
      std::clamp(placement.angle + angleAt(to) - angleAt(from), 0.01f, std::numbers::pi_v<float> / 2);
  m_point = m_space.multVecMatrix(m_grabbed + to - from);
  return true;
}
