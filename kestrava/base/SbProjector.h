#pragma once

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbVec2f.h"
#include "kestrava/base/SbViewVolume.h"

/// Finds the point of a line or a surface that lies under a point of the screen. The line or surface is given
/// in a working space, whose matrix to the world may be any that has an inverse.
class SbProjector {
 public:
  virtual ~SbProjector() = default;

  void setViewVolume(SbViewVolume const& volume) { m_volume = volume; }
  SbViewVolume const& getViewVolume() const { return m_volume; }
  /// A matrix without an inverse is refused (false): the former space stays.
  bool setWorkingSpace(SbMatrix const& toWorld);
  SbMatrix const& getWorkingSpace() const { return m_toWorld; }

  /// `screen` is 0 to 1 from the lower left corner, and beyond; the point is in the working space. False, and
  /// the point unchanged, where there is none in front of the camera.
  virtual bool project(SbVec2f const& screen, SbVec3f& point) const = 0;

 protected:
  /// In the working space; its position is on the near plane.
  SbLine getLine(SbVec2f const& screen) const;
  /// Whether a point of the working space lies in front of the camera.
  bool isInFront(SbVec3f const& point) const;

  SbViewVolume m_volume;
  SbMatrix m_toWorld, m_fromWorld;
};
