#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A jack: its middle and its rods move, the cubes scale, the balls turn.
class SoJackDragger : public SoTransformDragger {
  SO_NODE(SoJackDragger, SoTransformDragger)
  SoJackDragger();

  SoHandlePart point{this, "point"};
  SoHandlePart xTranslator{this, "xTranslator"};
  SoHandlePart yTranslator{this, "yTranslator"};
  SoHandlePart zTranslator{this, "zTranslator"};
  SoHandlePart scaler{this, "scaler"};
  SoHandlePart rotator{this, "rotator"};

 protected:
  ~SoJackDragger() override = default;
};
