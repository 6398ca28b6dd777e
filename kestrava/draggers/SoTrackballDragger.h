#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A ball: rolled with a finger, or turned about one axis by a ring.
class SoTrackballDragger : public SoTransformDragger {
  SO_NODE(SoTrackballDragger, SoTransformDragger)
  SoTrackballDragger();

  SoHandlePart rotator{this, "rotator"};
  SoHandlePart xRotator{this, "xRotator"};
  SoHandlePart yRotator{this, "yRotator"};
  SoHandlePart zRotator{this, "zRotator"};

 protected:
  ~SoTrackballDragger() override = default;
};
