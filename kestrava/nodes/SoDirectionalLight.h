#pragma once

#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoLight.h"

/// A light from infinitely far away.
class SoDirectionalLight : public SoLight {
  SO_NODE(SoDirectionalLight, SoLight)
  SoSFVec3f direction{this, "direction", SbVec3f(0, 0, -1)}; ///< in which the light travels

 protected:
  ~SoDirectionalLight() override = default;
};
