#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a box whose sides move, whose corners scale and whose edges turn.
class SoTransformBoxManip : public SoTransformManip {
  SO_NODE(SoTransformBoxManip, SoTransformManip)
  SoTransformBoxManip();

 protected:
  ~SoTransformBoxManip() override = default;
};
