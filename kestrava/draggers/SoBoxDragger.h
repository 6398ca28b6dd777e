#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// Base of the boxes around an object: their six sides move in their plane, two for each axis, translucent
/// and with the edges of the box.
class SoBoxDragger : public SoTransformDragger {
  SO_ABSTRACT_NODE(SoBoxDragger, SoTransformDragger)

  SoHandlePart translator1{this, "translator1"};
  SoHandlePart translator2{this, "translator2"};
  SoHandlePart translator3{this, "translator3"};
  SoHandlePart translator4{this, "translator4"};
  SoHandlePart translator5{this, "translator5"};
  SoHandlePart translator6{this, "translator6"};

 protected:
  SoBoxDragger();
  ~SoBoxDragger() override = default;
};
