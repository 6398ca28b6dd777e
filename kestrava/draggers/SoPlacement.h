#pragma once

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbVec3f.h"

/// Where a dragger has brought things: the values of an SoTransform, and the angle of a cone.
struct SoPlacement {
  SbVec3f translation;
  SbRotation rotation;
  SbVec3f scaleFactor{1, 1, 1};
  SbRotation scaleOrientation;
  SbVec3f center;
  float angle = 0; // radians

  SbMatrix getMatrix() const;
  /// The same without scaling.
  SbMatrix getRigidMatrix() const;
  /// Moves so that a point (before the placement) comes to lie at another one (after it).
  void moveTo(SbVec3f const& point, SbVec3f const& wanted);
};
