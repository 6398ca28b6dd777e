#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A ball: rolled with a finger, or turned about one axis by a ring.
class SoTrackballDragger : public SoTransformDragger {
  SO_NODE(SoTrackballDragger, SoTransformDragger)
  SoTrackballDragger();

  SoKitPart rotator{this, "rotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};
  SoKitPart xRotator{this, "xRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart yRotator{this, "yRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart zRotator{this, "zRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};

 protected:
  ~SoTrackballDragger() override = default;
};
