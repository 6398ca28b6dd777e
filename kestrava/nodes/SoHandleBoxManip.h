#pragma once

#include "kestrava/nodes/SoTransformManip.h"

/// A transform that a user changes by a box whose sides move and whose cubes scale.
class SoHandleBoxManip : public SoTransformManip {
  SO_NODE(SoHandleBoxManip, SoTransformManip)
  SoHandleBoxManip();

 protected:
  ~SoHandleBoxManip() override = default;
};
