#pragma once

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/nodes/SoGroup.h"

/// A group that shows one child, a coarser one the smaller it appears on the screen.
class SoLevelOfDetail : public SoGroup {
  SO_NODE(SoLevelOfDetail, SoGroup)
  SoMFFloat screenArea{this, "screenArea",
                       0.0f}; ///< pixels; child i is shown where the first i areas are all larger

 protected:
  ~SoLevelOfDetail() override = default;
};
