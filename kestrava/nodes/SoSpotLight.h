#pragma once

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoLight.h"

/// A light that shines from a point into a cone.
class SoSpotLight : public SoLight {
  SO_NODE(SoSpotLight, SoLight)
  SoSFVec3f location{this, "location", SbVec3f(0, 0, 1)};
  SoSFVec3f direction{this, "direction", SbVec3f(0, 0, -1)};
  SoSFFloat dropOffRate{this, "dropOffRate", 0.0f};      ///< 0 even, 1 concentrated in the middle
  SoSFFloat cutOffAngle{this, "cutOffAngle", 0.785398f}; ///< radians, from the axis to the edge

 protected:
  ~SoSpotLight() override = default;
};
