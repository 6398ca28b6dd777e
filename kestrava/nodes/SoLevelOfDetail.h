#pragma once

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/nodes/SoGroup.h"

/// A group that shows one child, a coarser one the smaller it appears on the screen.
class SoLevelOfDetail : public SoGroup {
  SO_NODE(SoLevelOfDetail, SoGroup)
  SoMFFloat screenArea{
      this, "screenArea",
      0.0f}; ///< pixels; the first child that appears larger than its entry is shown, else the last one

 protected:
  ~SoLevelOfDetail() override = default;
};
