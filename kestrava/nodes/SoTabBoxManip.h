#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a box whose sides move and whose tabs scale.
class SoTabBoxManip : public SoTransformManip {
  SO_NODE(SoTabBoxManip, SoTransformManip)
  SoTabBoxManip();

 protected:
  ~SoTabBoxManip() override = default;
};
