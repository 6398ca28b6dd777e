#pragma once

#include "kestrava/nodes/SoDirectionalLight.h"

/// Base of the directional lights that a user moves in the view.
class SoDirectionalLightManip : public SoDirectionalLight {
  SO_ABSTRACT_NODE(SoDirectionalLightManip, SoDirectionalLight)

 protected:
  SoDirectionalLightManip() = default;
  ~SoDirectionalLightManip() override = default;
};
