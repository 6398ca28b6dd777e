#pragma once

#include "kestrava/draggers/SoBoxDragger.h"

/// A box: its sides move, the cubes at its corners and on its sides scale, the balls on its edges turn about
/// an axis, those on its spikes freely.
class SoTransformerDragger : public SoBoxDragger {
  SO_NODE(SoTransformerDragger, SoBoxDragger)
  SoTransformerDragger();

  SoHandlePart scaler{this, "scaler"};
  SoHandlePart xScaler{this, "xScaler"};
  SoHandlePart yScaler{this, "yScaler"};
  SoHandlePart zScaler{this, "zScaler"};
  SoHandlePart xRotator{this, "xRotator"};
  SoHandlePart yRotator{this, "yRotator"};
  SoHandlePart zRotator{this, "zRotator"};
  SoHandlePart rotator{this, "rotator"};

 protected:
  ~SoTransformerDragger() override = default;
};
