#pragma once

#include "kestrava/base/SbProjector.h"
#include "kestrava/base/SbRotation.h"

/// Projects onto an endless cylinder. Beside the cylinder the point goes on around it, as far as the ray is
/// away from its edge.
class SbCylinderProjector : public SbProjector {
 public:
  /// In the working space; the radius is positive. Radius 1 around the z axis unless set.
  void setCylinder(SbLine const& axis, float radius) {
    m_axis = axis;
    m_radius = radius;
  }
  SbLine const& getAxis() const { return m_axis; }
  float getRadius() const { return m_radius; }
  /// Whether the side towards the user counts, as it does unless set, or the one behind.
  void setFront(bool on) { m_front = on; }
  bool isFront() const { return m_front; }
  /// False also where the user looks along the axis.
  bool project(SbVec2f const& screen, SbVec3f& point) const override;
  /// The rotation about the axis, less than half a turn, that takes the direction of one point to that of
  /// another.
  SbRotation getRotation(SbVec3f const& from, SbVec3f const& to) const {
    return rotationAbout(m_axis, from, to);
  }
  static SbRotation rotationAbout(SbLine const& axis, SbVec3f const& from, SbVec3f const& to);

 private:
  SbLine m_axis;
  float m_radius = 1;
  bool m_front = true;
};
