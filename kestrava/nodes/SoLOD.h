#pragma once

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoGroup.h"

/// A group that shows one child, by its distance from the camera; the first one where there is no camera.
class SoLOD : public SoGroup {
  SO_NODE(SoLOD, SoGroup)
  SoSFVec3f center{this, "center"}; ///< from where the distance is measured
  SoMFFloat range{this, "range"};   ///< ascending; child i is shown up to range i, the last one beyond

 protected:
  ~SoLOD() override = default;
};
