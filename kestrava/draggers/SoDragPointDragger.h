#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Moves a point in space: in the plane across the view by its ball, along an axis by an arrow, in the plane
/// of two axes by a tile.
class SoDragPointDragger : public SoDragger {
  SO_NODE(SoDragPointDragger, SoDragger)
  SoDragPointDragger();

  SoSFVec3f translation{this, "translation"};
  SoKitPart point{this, "point", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xTranslator{this, "xTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart yTranslator{this, "yTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart zTranslator{this, "zTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart yzTranslator{this, "yzTranslator", SoSeparator::getClassTypeId(),
                         SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xzTranslator{this, "xzTranslator", SoSeparator::getClassTypeId(),
                         SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xyTranslator{this, "xyTranslator", SoSeparator::getClassTypeId(),
                         SoDraggerHandle::getClassTypeId(), "this"};

 protected:
  ~SoDragPointDragger() override = default;
};
