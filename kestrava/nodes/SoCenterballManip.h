#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a ball that turns and whose centre can be moved.
class SoCenterballManip : public SoTransformManip {
  SO_NODE(SoCenterballManip, SoTransformManip)
  SoCenterballManip();

 protected:
  ~SoCenterballManip() override = default;
};
