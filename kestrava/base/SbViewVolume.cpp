#include "kestrava/base/SbViewVolume.h"

#include <algorithm>
#include <cmath>

#include "kestrava/base/SbBox3f.h"

void SbViewVolume::ortho(float left, float right, float bottom, float top, float near, float far) {
  *this = SbViewVolume();
  m_left = left;
  m_right = right;
  m_bottom = bottom;
  m_top = top;
  m_near = near;
  m_far = far;
}

void SbViewVolume::perspective(float fovy, float aspect, float near, float far) {
  float const top = near * std::tan(fovy / 2), right = top * aspect;
  ortho(-right, right, -top, top, near, far);
  m_type = PERSPECTIVE;
}

void SbViewVolume::getMatrices(SbMatrix& affine, SbMatrix& projection) const {
  SbMatrix move;
  move.setTranslate(-m_position);
  affine = move * m_orientation.inverse().getMatrix();

  float const width = getWidth(), height = getHeight(), depth = getDepth();
  projection.makeIdentity();
  if (m_type == ORTHOGRAPHIC) {
    projection[0][0] = 2 / width;
    projection[1][1] = 2 / height;
    projection[2][2] = -2 / depth;
    projection[3][0] = -(m_right + m_left) / width;
    projection[3][1] = -(m_top + m_bottom) / height;
    projection[3][2] = -(m_far + m_near) / depth;
  } else {
    projection[0][0] = 2 * m_near / width;
    projection[1][1] = 2 * m_near / height;
    projection[2][0] = (m_right + m_left) / width;
    projection[2][1] = (m_top + m_bottom) / height;
    projection[2][2] = -(m_far + m_near) / depth;
    projection[2][3] = -1;
    projection[3][2] = -2 * m_far * m_near / depth;
    projection[3][3] = 0;
  }
}

SbMatrix SbViewVolume::getMatrix() const {
  SbMatrix affine, projection;
  getMatrices(affine, projection);
  return affine * projection;
}

void SbViewVolume::projectPointToLine(SbVec2f const& screen, SbVec3f& onNear, SbVec3f& onFar) const {
  SbVec3f const near(m_left + screen[0] * getWidth(), m_bottom + screen[1] * getHeight(), -m_near);
  float const growth = m_type == PERSPECTIVE ? m_far / m_near : 1;
  SbVec3f const far(near[0] * growth, near[1] * growth, -m_far);
  onNear = m_position + m_orientation.multVec(near);
  onFar = m_position + m_orientation.multVec(far);
}

SbLine SbViewVolume::projectPointToLine(SbVec2f const& screen) const {
  SbVec3f near, far;
  projectPointToLine(screen, near, far);
  return SbLine(near, far);
}

bool SbViewVolume::projectToScreen(SbVec3f const& world, SbVec3f& screen) const {
  // In the camera's space first: far from the origin the combined matrix would lose digits.
  SbVec3f const seen = m_orientation.inverse().multVec(world - m_position);
  if (m_type == PERSPECTIVE && !(seen[2] < 0)) return false;
  SbMatrix affine, projection;
  getMatrices(affine, projection);
  screen = (projection.multVecMatrix(seen) + SbVec3f(1, 1, 1)) / 2;
  return true;
}

SbPlane SbViewVolume::getPlane(float distance) const {
  return SbPlane(-getProjectionDirection(), getSightPoint(distance));
}

std::array<SbPlane, 6> SbViewVolume::getBoundaries() const {
  // A side of the frustum contains the camera and an edge of the near rectangle; one of a box only the edge.
  bool const frustum = m_type == PERSPECTIVE;
  auto side = [&](int axis, float inwards, float edge) {
    SbVec3f normal, point;
    normal[axis] = inwards * (frustum ? m_near : 1);
    if (frustum) {
      normal[2] = inwards * edge;
    } else {
      point[axis] = edge;
    }
    return SbPlane(m_orientation.multVec(normal), m_position + m_orientation.multVec(point));
  };
  SbVec3f const ahead = getProjectionDirection();
  return {side(0, 1, m_left),
          side(0, -1, m_right),
          side(1, 1, m_bottom),
          side(1, -1, m_top),
          SbPlane(ahead, getSightPoint(m_near)),
          SbPlane(-ahead, getSightPoint(m_far))};
}

bool SbViewVolume::intersect(SbBox3f const& box) const { return !isOutside(getBoundaries(), box); }

bool SbViewVolume::isOutside(std::array<SbPlane, 6> const& boundaries, SbBox3f const& box) {
  if (box.isEmpty()) return true;
  return std::any_of(boundaries.begin(), boundaries.end(), [&](SbPlane const& plane) {
    SbVec3f innermost;
    for (int i = 0; i < 3; ++i) innermost[i] = plane.getNormal()[i] > 0 ? box.getMax()[i] : box.getMin()[i];
    return !plane.isInHalfSpace(innermost);
  });
}
