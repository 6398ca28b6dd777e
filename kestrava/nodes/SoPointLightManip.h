#pragma once

#include "kestrava/nodes/SoPointLight.h"

/// Base of the point lights that a user moves in the view.
class SoPointLightManip : public SoPointLight {
  SO_ABSTRACT_NODE(SoPointLightManip, SoPointLight)

 protected:
  SoPointLightManip() = default;
  ~SoPointLightManip() override = default;
};
