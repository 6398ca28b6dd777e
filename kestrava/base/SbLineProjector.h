#pragma once

#include "kestrava/base/SbProjector.h"

/// Projects onto a line: to the point that comes nearest to the ray of the screen's point, measured in the
/// world.
class SbLineProjector : public SbProjector {
 public:
  /// In the working space. The z axis unless set.
  void setLine(SbLine const& line) { m_line = line; }
  SbLine const& getProjectionLine() const { return m_line; }
  /// False also for a line that runs along the ray.
  bool project(SbVec2f const& screen, SbVec3f& point) const override;

 private:
  SbLine m_line;
};
