#pragma once

#include "kestrava/draggers/SoBoxDragger.h"

/// A box: its sides move, the cubes at its corners scale, the balls on its edges turn.
class SoTransformBoxDragger : public SoBoxDragger {
  SO_NODE(SoTransformBoxDragger, SoBoxDragger)
  SoTransformBoxDragger();

  SoHandlePart scaler{this, "scaler"};
  SoHandlePart xRotator{this, "xRotator"};
  SoHandlePart yRotator{this, "yRotator"};
  SoHandlePart zRotator{this, "zRotator"};

 protected:
  ~SoTransformBoxDragger() override = default;
};
