#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoCamera.h"

/// A camera that shows everything at the same scale.
class SoOrthographicCamera : public SoCamera {
  SO_NODE(SoOrthographicCamera, SoCamera)
  SoSFFloat height{this, "height", 2.0f}; ///< of the whole view, scene units

  void scaleHeight(float factor) override;

 protected:
  SbViewVolume volumeOf(float aspect) const override;
  void viewSphere(SbVec3f const& center, float radius, float aspect) override;
  ~SoOrthographicCamera() override = default;
};
