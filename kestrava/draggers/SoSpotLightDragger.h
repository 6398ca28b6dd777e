#pragma once

#include "kestrava/draggers/SoDragger.h"

/// Stands for a light with a cone around -z: the ball moves, the tip of the arrow turns, the rim opens the
/// cone.
class SoSpotLightDragger : public SoDragger {
  SO_NODE(SoSpotLightDragger, SoDragger)
  SoSpotLightDragger();

  SoSFVec3f translation{this, "translation"};
  SoSFRotation rotation{this, "rotation"};
  SoSFFloat angle{this, "angle", 0.785398f}; ///< radians, from the axis to the rim
  SoHandlePart point{this, "point"};
  SoHandlePart rotator{this, "rotator"};
  SoHandlePart beam{this, "beam"};

 protected:
  ~SoSpotLightDragger() override = default;
  void fieldChanged(SoField* field) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  /// Makes the cone; one that a program has put in its place stays as it is.
  void showAngle();

  SoNode const* m_ownBeam = nullptr;
};
