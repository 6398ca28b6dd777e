#pragma once

#include "kestrava/nodes/SoSpotLight.h"

/// Base of the spot lights that a user moves in the view.
class SoSpotLightManip : public SoSpotLight {
  SO_ABSTRACT_NODE(SoSpotLightManip, SoSpotLight)

 protected:
  SoSpotLightManip() = default;
  ~SoSpotLightManip() override = default;
};
