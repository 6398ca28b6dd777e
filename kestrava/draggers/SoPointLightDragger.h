#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Stands for a light in a point: the ball moves across the view, the arrows along an axis.
class SoPointLightDragger : public SoDragger {
  SO_NODE(SoPointLightDragger, SoDragger)
  SoPointLightDragger();

  SoSFVec3f translation{this, "translation"};
  SoHandlePart point{this, "point"};
  SoHandlePart xTranslator{this, "xTranslator"};
  SoHandlePart yTranslator{this, "yTranslator"};
  SoHandlePart zTranslator{this, "zTranslator"};

 protected:
  ~SoPointLightDragger() override = default;
};
