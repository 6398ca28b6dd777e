#pragma once

#include "kestrava/base/SbProjector.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbSphere.h"

/// Projects onto a sphere. Beside the sphere the point goes on around it, as far as the ray is away from its
/// edge.
class SbSphereProjector : public SbProjector {
 public:
  /// In the working space; the radius is positive.
  void setSphere(SbSphere const& sphere) { m_sphere = sphere; }
  SbSphere const& getSphere() const { return m_sphere; }
  /// Whether the side towards the user counts, as it does unless set, or the one behind.
  void setFront(bool on) { m_front = on; }
  bool isFront() const { return m_front; }
  bool project(SbVec2f const& screen, SbVec3f& point) const override;
  /// The shortest rotation about the centre that takes one point of the sphere to another.
  SbRotation getRotation(SbVec3f const& from, SbVec3f const& to) const {
    return SbRotation(from - m_sphere.center, to - m_sphere.center);
  }

 private:
  SbSphere m_sphere{SbVec3f(), 1};
  bool m_front = true;
};
