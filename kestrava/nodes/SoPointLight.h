#pragma once

#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoLight.h"

/// A light that shines from a point in all directions.
class SoPointLight : public SoLight {
  SO_NODE(SoPointLight, SoLight)
  SoSFVec3f location{this, "location", SbVec3f(0, 0, 1)};

 protected:
  ~SoPointLight() override = default;
};
