#pragma once

#include "kestrava/draggers/SoBoxDragger.h"

/// A box: its sides move, the tabs at its corners scale in all directions alike, those on its edges across
/// the edge.
class SoTabBoxDragger : public SoBoxDragger {
  SO_NODE(SoTabBoxDragger, SoBoxDragger)
  SoTabBoxDragger();

  SoHandlePart scaler{this, "scaler"};
  SoHandlePart xScaler{this, "xScaler"};
  SoHandlePart yScaler{this, "yScaler"};
  SoHandlePart zScaler{this, "zScaler"};

 protected:
  ~SoTabBoxDragger() override = default;
};
