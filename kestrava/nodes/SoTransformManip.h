#pragma once

#include "kestrava/nodes/SoTransform.h"

/// Base of the transforms that a user changes in the view.
class SoTransformManip : public SoTransform {
  SO_ABSTRACT_NODE(SoTransformManip, SoTransform)

 protected:
  SoTransformManip() = default;
  ~SoTransformManip() override = default;
};
