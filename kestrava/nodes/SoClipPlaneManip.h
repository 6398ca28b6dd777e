#pragma once

#include "kestrava/nodes/SoClipPlane.h"

/// Base of the clip planes that a user moves in the view.
class SoClipPlaneManip : public SoClipPlane {
  SO_ABSTRACT_NODE(SoClipPlaneManip, SoClipPlane)

 protected:
  SoClipPlaneManip() = default;
  ~SoClipPlaneManip() override = default;
};
