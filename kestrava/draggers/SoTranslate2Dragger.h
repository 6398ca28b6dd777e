#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Moves in its x-y plane. Shift keeps to one axis.
class SoTranslate2Dragger : public SoDragger {
  SO_NODE(SoTranslate2Dragger, SoDragger)
  SoTranslate2Dragger();

  SoSFVec3f translation{this, "translation"};
  SoHandlePart translator{this, "translator"};

 protected:
  ~SoTranslate2Dragger() override = default;
};
