#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFColor.h"
#include "kestrava/nodes/SoBackground.h"

/// Fills the window with a vertical transition between two colours.
class SoGradientBackground : public SoBackground {
  SO_NODE(SoGradientBackground, SoBackground)
  SoSFColor color0{this, "color0", SbColor(0.5f, 0.5f, 0.5f)}; ///< at the bottom
  SoSFColor color1{this, "color1", SbColor(0.8f, 0.8f, 0.9f)}; ///< at the top
  SoSFBool swapColors{this, "swapColors", false};              ///< exchanges the two

 protected:
  ~SoGradientBackground() override = default;
};
