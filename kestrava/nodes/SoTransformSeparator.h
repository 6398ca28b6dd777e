#pragma once

#include "kestrava/nodes/SoGroup.h"

/// A group whose children leave the transformation as it was; everything else they change stays changed.
class SoTransformSeparator : public SoGroup {
  SO_NODE(SoTransformSeparator, SoGroup)

 protected:
  ~SoTransformSeparator() override = default;
};
