#pragma once

#include "kestrava/kits/SoBaseKit.h"

/// Base of the kits that a user moves in the view to change something.
class SoDragger : public SoBaseKit {
  SO_ABSTRACT_NODE(SoDragger, SoBaseKit)

 protected:
  SoDragger() = default;
  ~SoDragger() override = default;
};
