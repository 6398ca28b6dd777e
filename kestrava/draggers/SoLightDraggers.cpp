// The draggers that stand for lights and planes.

#include <cmath>

#include "kestrava/draggers/SoClipPlaneDragger.h"
#include "kestrava/draggers/SoDirectionalLightDragger.h"
#include "kestrava/draggers/SoPointLightDragger.h"
#include "kestrava/draggers/SoSpotLightDragger.h"

namespace {

SbColor const LIGHT(0.95f, 0.9f, 0.6f);

} // namespace

SoPointLightDragger::SoPointLightDragger() : SoDragger(ROUND) {
  addHandle(point, Gesture::MOVE_IN_VIEW, Z, LIGHT, SoHandleGeometry().ball({}, 0.25f));
  SoKitPart* const arrows[] = {&xTranslator, &yTranslator, &zTranslator};
  for (int i = 0; i < 3; ++i) {
    SoHandleGeometry both;
    both.arrow(axisOf(i) * 0.3f, axisOf(i), 0.025f).arrow(axisOf(i) * -0.3f, -axisOf(i), 0.025f);
    addHandle(*arrows[i], Gesture::MOVE_ON_LINE, axisOf(i), axisColor(i), both);
  }
}

SoDirectionalLightDragger::SoDirectionalLightDragger() : SoDragger(ROUND) {
  addHandle(point, Gesture::MOVE_IN_VIEW, Z, plainColor(), SoHandleGeometry().ball({}, 0.16f));
  SoHandleGeometry arrow;
  arrow.arrow(Z * -0.2f, Z * -1.2f, 0.045f);
  addHandle(rotator, Gesture::TURN_FREELY, X, LIGHT, arrow);
}

SoSpotLightDragger::SoSpotLightDragger() : SoDragger(ROUND) {
  addHandle(point, Gesture::MOVE_IN_VIEW, Z, LIGHT, SoHandleGeometry().ball({}, 0.16f));
  SoHandleGeometry arrow;
  arrow.arrow(Z * -0.2f, Z * -1.2f, 0.035f);
  addHandle(rotator, Gesture::TURN_FREELY, X, plainColor(), arrow);
  addHandle(beam, Gesture::OPEN_CONE, -Z, LIGHT, SoHandleGeometry());
  m_ownBeam = beam.getValue();
  showAngle();
}

void SoSpotLightDragger::fieldChanged(SoField* field) {
  SoDragger::fieldChanged(field);
  if (field == &angle) showAngle();
}

void SoSpotLightDragger::copyContents(SoFieldContainer const& from, SoCopier& copier) {
  SoDragger::copyContents(from, copier);
  auto const& original = static_cast<SoSpotLightDragger const&>(from);
  m_ownBeam = original.beam.getValue() == original.m_ownBeam ? beam.getValue() : nullptr;
}

void SoSpotLightDragger::showAngle() {
  SoNode* const node = beam.getValue();
  if (!node || node != m_ownBeam) return;
  float const open = std::clamp(angle.getValue(), 0.0f, 1.55f);
  float const radius = std::sin(open), depth = std::cos(open);
  SoHandleGeometry cone;
  SbVec3f const middle(0, 0, -depth);
  cone.ring(middle, Z, std::max(radius, 0.01f), 0.025f);
  for (SbVec3f const& side : {X, -X, Y, -Y}) cone.line({SbVec3f(), middle + side * radius});
  auto* const handle = static_cast<SoDraggerHandle*>(node);
  bool const notifies = handle->enableNotify(false);
  handle->removeAllChildren();
  cone.addTo(handle);
  handle->enableNotify(notifies);
  handle->touch();
}

SoClipPlaneDragger::SoClipPlaneDragger() : SoDragger(ROUND) {
  addHandle(zTranslator, Gesture::MOVE_ON_LINE, Z, axisColor(2),
            SoHandleGeometry().rod({}, Z * 0.6f, 0.02f).line({{}, Z * 0.6f}));
  addHandle(rotator, Gesture::TURN_FREELY, X, LIGHT, SoHandleGeometry().cone(Z * 0.6f, Z * 0.85f, 0.09f));
  SoHandleGeometry frame;
  SbVec3f const corners[] = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
  for (int i = 0; i < 4; ++i)
    frame.rod(corners[i], corners[(i + 1) % 4], 0.015f).line({corners[i], corners[(i + 1) % 4]});
  addHandle(translator, Gesture::MOVE_ON_PLANE, Z, plainColor(), frame);
}
