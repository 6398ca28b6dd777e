#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a jack that moves, scales and turns.
class SoJackManip : public SoTransformManip {
  SO_NODE(SoJackManip, SoTransformManip)
  SoJackManip();

 protected:
  ~SoJackManip() override = default;
};
