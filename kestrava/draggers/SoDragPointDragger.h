#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Moves a point in space: in the plane across the view by its ball, along an axis by an arrow, in the plane
/// of two axes by a tile.
class SoDragPointDragger : public SoDragger {
  SO_NODE(SoDragPointDragger, SoDragger)
  SoDragPointDragger();

  SoSFVec3f translation{this, "translation"};
  SoHandlePart point{this, "point"};
  SoHandlePart xTranslator{this, "xTranslator"};
  SoHandlePart yTranslator{this, "yTranslator"};
  SoHandlePart zTranslator{this, "zTranslator"};
  SoHandlePart yzTranslator{this, "yzTranslator"};
  SoHandlePart xzTranslator{this, "xzTranslator"};
  SoHandlePart xyTranslator{this, "xyTranslator"};

 protected:
  ~SoDragPointDragger() override = default;
};
