#pragma once

#include <array>

#include "kestrava/base/SbLine.h"
#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbPlane.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbVec2f.h"
#include "kestrava/base/SbVec3f.h"

/// What a camera sees: a frustum or a box in world space. As set by ortho() or perspective() the camera
/// stands at the origin, looks along -z with y up, and is then turned and moved. Points of the screen are 0
/// to 1 from the lower left corner.
class SbViewVolume {
 public:
  enum ProjectionType { ORTHOGRAPHIC, PERSPECTIVE };

  /// Orthographic, -1 to 1 in each direction.
  SbViewVolume() = default;
  /// Distances from the camera; `near` and `far` grow away from it and may be negative.
  void ortho(float left, float right, float bottom, float top, float near, float far);
  /// `fovy` in radians, 0 < near < far.
  void perspective(float fovy, float aspect, float near, float far);
  /// Turns the camera about its position, after the turns so far.
  void rotateCamera(SbRotation const& rotation) { m_orientation *= rotation; }
  void translateCamera(SbVec3f const& translation) { m_position += translation; }

  ProjectionType getProjectionType() const { return m_type; }
  /// The camera's position.
  SbVec3f const& getProjectionPoint() const { return m_position; }
  SbRotation const& getOrientation() const { return m_orientation; }
  /// Unit length.
  SbVec3f getProjectionDirection() const { return m_orientation.multVec(SbVec3f(0, 0, -1)); }
  SbVec3f getViewUp() const { return m_orientation.multVec(SbVec3f(0, 1, 0)); }
  float getNearDist() const { return m_near; }
  /// From the near to the far plane.
  float getDepth() const { return m_far - m_near; }
  /// On the near plane.
  float getWidth() const { return m_right - m_left; }
  float getHeight() const { return m_top - m_bottom; }

  /// `affine` takes the world to the camera's space, `projection` from there to OpenGL's clip space.
  void getMatrices(SbMatrix& affine, SbMatrix& projection) const;
  /// World to clip space.
  SbMatrix getMatrix() const;

  /// The ray of a point of the screen; its position is on the near plane.
  SbLine projectPointToLine(SbVec2f const& screen) const;
  void projectPointToLine(SbVec2f const& screen, SbVec3f& onNear, SbVec3f& onFar) const;
  /// x and y on the screen, z from 0 (near) to 1 (far). False, and `screen` unchanged, when a perspective
  /// camera has the point beside or behind it.
  bool projectToScreen(SbVec3f const& world, SbVec3f& screen) const;
  /// The plane across the view at a distance from the camera; its normal points to the camera.
  SbPlane getPlane(float distance) const;
  SbVec3f getSightPoint(float distance) const { return m_position + getProjectionDirection() * distance; }

  /// Left, right, bottom, top, near, far; the normals point inwards.
  std::array<SbPlane, 6> getBoundaries() const;
  /// False only when nothing of the box can be seen; true for some boxes that are just outside an edge. An
  /// empty box is never seen. For many boxes keep the boundaries and ask isOutside().
  bool intersect(SbBox3f const& box) const;
  static bool isOutside(std::array<SbPlane, 6> const& boundaries, SbBox3f const& box);

 private:
  ProjectionType m_type = ORTHOGRAPHIC;
  SbVec3f m_position;
  SbRotation m_orientation;
  // The rectangle on the near plane, in the camera's space.
  float m_left = -1, m_right = 1, m_bottom = -1, m_top = 1;
  float m_near = -1, m_far = 1;
};
