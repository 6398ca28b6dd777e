#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A jack: its middle and its rods move, the cubes scale, the balls turn.
class SoJackDragger : public SoTransformDragger {
  SO_NODE(SoJackDragger, SoTransformDragger)
  SoJackDragger();

  SoKitPart point{this, "point", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xTranslator{this, "xTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart yTranslator{this, "yTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart zTranslator{this, "zTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart scaler{this, "scaler", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart rotator{this, "rotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};

 protected:
  ~SoJackDragger() override = default;
};
