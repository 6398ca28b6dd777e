#pragma once

#include "kestrava/nodes/SoSeparator.h"

/// A separator whose shapes are drawn last and over everything else.
class SoAnnotation : public SoSeparator {
  SO_NODE(SoAnnotation, SoSeparator)

 protected:
  ~SoAnnotation() override = default;
};
