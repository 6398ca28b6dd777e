#pragma once

#include "kestrava/draggers/SoBoxDragger.h"

/// A box: its sides move, the cubes at its corners scale in all directions alike, those on its sides along
/// one axis.
class SoHandleBoxDragger : public SoBoxDragger {
  SO_NODE(SoHandleBoxDragger, SoBoxDragger)
  SoHandleBoxDragger();

  SoHandlePart scaler{this, "scaler"};
  SoHandlePart xScaler{this, "xScaler"};
  SoHandlePart yScaler{this, "yScaler"};
  SoHandlePart zScaler{this, "zScaler"};

 protected:
  ~SoHandleBoxDragger() override = default;
};
