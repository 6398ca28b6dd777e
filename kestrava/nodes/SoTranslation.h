#pragma once

#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoTransformation.h"

/// Moves what follows.
class SoTranslation : public SoTransformation {
  SO_NODE(SoTranslation, SoTransformation)
  SoSFVec3f translation{this, "translation"};

 protected:
  ~SoTranslation() override = default;
};
