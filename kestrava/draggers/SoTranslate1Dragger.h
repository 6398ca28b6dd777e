#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Moves along its x axis.
class SoTranslate1Dragger : public SoDragger {
  SO_NODE(SoTranslate1Dragger, SoDragger)
  SoTranslate1Dragger();

  SoSFVec3f translation{this, "translation"};
  SoHandlePart translator{this, "translator"};

 protected:
  ~SoTranslate1Dragger() override = default;
};
