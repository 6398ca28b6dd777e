#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a box that moves, scales and turns.
class SoTransformerManip : public SoTransformManip {
  SO_NODE(SoTransformerManip, SoTransformManip)
  SoTransformerManip();

 protected:
  ~SoTransformerManip() override = default;
};
