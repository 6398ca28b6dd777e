#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoCamera.h"

/// A camera that shows what is far smaller.
class SoPerspectiveCamera : public SoCamera {
  SO_NODE(SoPerspectiveCamera, SoCamera)
  SoSFFloat heightAngle{this, "heightAngle", 0.785398f}; ///< radians, of the whole view

  void scaleHeight(float factor) override;

 protected:
  SbViewVolume volumeOf(float aspect) const override;
  void viewSphere(SbVec3f const& center, float radius, float aspect) override;
  ~SoPerspectiveCamera() override = default;
};
