#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFPlane.h"
#include "kestrava/nodes/SoNode.h"

/// Cuts away what lies outside of a half space.
class SoClipPlane : public SoNode {
  SO_NODE(SoClipPlane, SoNode)
  SoSFPlane plane{this, "plane", SbPlane(SbVec3f(1, 0, 0), 0.0f)}; ///< its normal points to what stays
  SoSFBool on{this, "on", true};

 protected:
  ~SoClipPlane() override = default;
};
