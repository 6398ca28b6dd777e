#pragma once

#include "kestrava/base/SbPlane.h"
#include "kestrava/base/SbProjector.h"

/// Projects onto a plane.
class SbPlaneProjector : public SbProjector {
 public:
  /// In the working space. The plane z = 0 unless set.
  void setPlane(SbPlane const& plane) { m_plane = plane; }
  SbPlane const& getPlane() const { return m_plane; }
  /// False also where the plane is seen edge on.
  bool project(SbVec2f const& screen, SbVec3f& point) const override;

 private:
  SbPlane m_plane;
};
