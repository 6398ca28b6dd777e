#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Stands for a light in a point: the ball moves across the view, the arrows along an axis.
class SoPointLightDragger : public SoDragger {
  SO_NODE(SoPointLightDragger, SoDragger)
  SoPointLightDragger();

  SoSFVec3f translation{this, "translation"};
  SoKitPart point{this, "point", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xTranslator{this, "xTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart yTranslator{this, "yTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart zTranslator{this, "zTranslator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};

 protected:
  ~SoPointLightDragger() override = default;
};
