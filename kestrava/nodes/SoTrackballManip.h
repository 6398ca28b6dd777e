#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a ball that turns.
class SoTrackballManip : public SoTransformManip {
  SO_NODE(SoTrackballManip, SoTransformManip)
  SoTrackballManip();

 protected:
  ~SoTrackballManip() override = default;
};
