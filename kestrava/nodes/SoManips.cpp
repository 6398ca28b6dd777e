// The manipulators: what their draggers mean to them, how they are traversed, how they take and leave their
// places.

#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/draggers/SoCenterballDragger.h"
#include "kestrava/draggers/SoClipPlaneDragger.h"
#include "kestrava/draggers/SoDirectionalLightDragger.h"
#include "kestrava/draggers/SoHandleBoxDragger.h"
#include "kestrava/draggers/SoJackDragger.h"
#include "kestrava/draggers/SoPointLightDragger.h"
#include "kestrava/draggers/SoSpotLightDragger.h"
#include "kestrava/draggers/SoTabBoxDragger.h"
#include "kestrava/draggers/SoTrackballDragger.h"
#include "kestrava/draggers/SoTransformBoxDragger.h"
#include "kestrava/draggers/SoTransformerDragger.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/nodes/SoCenterballManip.h"
#include "kestrava/nodes/SoClipPlaneManip.h"
#include "kestrava/nodes/SoDirectionalLightManip.h"
#include "kestrava/nodes/SoHandleBoxManip.h"
#include "kestrava/nodes/SoJackManip.h"
#include "kestrava/nodes/SoManipEffects.h"
#include "kestrava/nodes/SoPointLightManip.h"
#include "kestrava/nodes/SoSpotLightManip.h"
#include "kestrava/nodes/SoTabBoxManip.h"
#include "kestrava/nodes/SoTrackballManip.h"
#include "kestrava/nodes/SoTransformBoxManip.h"
#include "kestrava/nodes/SoTransformerManip.h"

namespace {

// Transforms: the fields have the same names.

void transformToManip(SoNode* manip, SoDragger*, SoField* changed) { SoCopyToSameName(changed, manip); }
void transformToDragger(SoNode* manip, SoDragger* dragger, SoField* changed) {
  if (changed) {
    SoCopyToSameName(changed, dragger);
    return;
  }
  for (int i = 0; i < manip->getNumFields(); ++i) SoCopyToSameName(manip->getField(i), dragger);
}

// Lights and planes: the dragger's placement stands for a place and a direction.

SbVec3f const FORWARD(0, 0, -1);

template <class Field, class T> void setIfNew(Field& field, T const& value) {
  if (!(field.getValue() == value)) field.setValue(value);
}
/// A direction that differs by no more than rounding is none that the user has given.
void setDirection(SoSFVec3f& field, SbVec3f const& direction) {
  if (!field.getValue().normalized().equals(direction, 1e-6f)) field.setValue(direction);
}
/// Turns a placement so that one of its directions becomes another, by the shortest way.
void turnTo(SoPlacement& placement, SbVec3f const& own, SbVec3f const& wanted) {
  SbVec3f const now = placement.rotation.multVec(own);
  if (wanted.length() > 0 && !now.equals(wanted.normalized(), 1e-6f))
    placement.rotation *= SbRotation(now, wanted);
}

void directionalToManip(SoNode* manip, SoDragger* dragger, SoField*) {
  setDirection(static_cast<SoDirectionalLight*>(manip)->direction,
               dragger->getPlacement().rotation.multVec(FORWARD));
}
void directionalToDragger(SoNode* manip, SoDragger* dragger, SoField*) {
  SoPlacement placement = dragger->getPlacement();
  turnTo(placement, FORWARD, static_cast<SoDirectionalLight*>(manip)->direction.getValue());
  dragger->setPlacement(placement);
}

void pointToManip(SoNode* manip, SoDragger* dragger, SoField*) {
  setIfNew(static_cast<SoPointLight*>(manip)->location, dragger->getPlacement().translation);
}
void pointToDragger(SoNode* manip, SoDragger* dragger, SoField*) {
  SoPlacement placement = dragger->getPlacement();
  placement.translation = static_cast<SoPointLight*>(manip)->location.getValue();
  dragger->setPlacement(placement);
}

void spotToManip(SoNode* manip, SoDragger* dragger, SoField*) {
  auto* light = static_cast<SoSpotLight*>(manip);
  SoPlacement const placement = dragger->getPlacement();
  setIfNew(light->location, placement.translation);
  setDirection(light->direction, placement.rotation.multVec(FORWARD));
  if (dragger->getField("angle")) setIfNew(light->cutOffAngle, placement.angle);
}
void spotToDragger(SoNode* manip, SoDragger* dragger, SoField*) {
  auto* light = static_cast<SoSpotLight*>(manip);
  SoPlacement placement = dragger->getPlacement();
  placement.translation = light->location.getValue();
  turnTo(placement, FORWARD, light->direction.getValue());
  placement.angle = light->cutOffAngle.getValue();
  dragger->setPlacement(placement);
}

SbVec3f const UPWARD(0, 0, 1);

void planeToManip(SoNode* manip, SoDragger* dragger, SoField*) {
  auto* node = static_cast<SoClipPlane*>(manip);
  SoPlacement const placement = dragger->getPlacement();
  SbPlane const plane(placement.rotation.multVec(UPWARD), placement.translation);
  if (!node->plane.getValue().equals(plane, 1e-6f)) node->plane = plane;
}
void planeToDragger(SoNode* manip, SoDragger* dragger, SoField*) {
  SbPlane const plane = static_cast<SoClipPlane*>(manip)->plane.getValue();
  SoPlacement placement = dragger->getPlacement();
  turnTo(placement, UPWARD, plane.getNormal());
  float const off = plane.getDistance(placement.translation);
  if (std::abs(off) > 1e-6f) placement.translation -= plane.getNormal() * off;
  dragger->setPlacement(placement);
}

// Traversal: the dragger, then what the plain node does. The dragger has no bounds here.

/// What the dragger surrounds, given the bounds of what follows.
SbBox3f surround(SbBox3f const& followers, SoTransformManip const&) { return followers; }
template <class Light> SbBox3f surround(SbBox3f const& followers, Light const&) {
  return SoBoxInBall(followers.getSize().length() * 0.14f);
}
SbBox3f surround(SbBox3f const& followers, SoClipPlaneManip const&) {
  return SoBoxInBall(followers.getSize().length() * 0.55f);
}

/// Where the dragger stands, seen from the manipulator.
template <class Manip> SbVec3f placeOf(SbBox3f const&, Manip const&) { return SbVec3f(); }
/// Light from far away has no place: its arrow hangs over what it shines on.
SbVec3f placeOf(SbBox3f const& followers, SoDirectionalLightManip const&) {
  if (followers.isEmpty()) return SbVec3f();
  SbVec3f const size = followers.getSize();
  return followers.getCenter() + SbVec3f(0, size[1] * 0.5f + size.length() * 0.2f, 0);
}

/// Where a dragger stands matters to an event only when it takes hold; the bounds may take their time.
bool asksForPlace(SoStateAction& action) {
  if (!action.isOfType(SoHandleEventAction::getClassTypeId())) return true;
  return static_cast<SoHandleEventAction&>(action).getEvent()->isOfType(SoMouseButtonEvent::getClassTypeId());
}

template <class Manip> void visitManip(SoStateAction& action, Manip& manip) {
  if (!manip.getDragger()) {
    SoApplyEffect(action, manip);
    return;
  }
  SoState& state = action.getState();
  SbBox3f const followers = asksForPlace(action) ? SoBoundsOfFollowers(action) : SbBox3f();
  SbMatrix const before = state.get<SoModelMatrixElement>().matrix;
  SbMatrix place;
  place.setTranslate(placeOf(followers, manip));
  state.modify<SoModelMatrixElement>().matrix.multLeft(place);
  state.modify<SoDraggerElement>().around = surround(followers, manip);
  action.enterChildren(&manip, false);
  action.whenLeft([&action, &state, &manip, before] {
    state.modify<SoModelMatrixElement>().matrix = before;
    state.modify<SoDraggerElement>() = {};
    SoApplyEffect(action, manip);
  });
}
template <class Manip> void boundManip(SoGetBoundingBoxAction& action, Manip& manip) {
  SoApplyEffect(action, manip);
}

bool const registered =
    SoAction::addMethods<visitManip<SoTransformManip>, visitManip<SoDirectionalLightManip>,
                         visitManip<SoPointLightManip>, visitManip<SoSpotLightManip>,
                         visitManip<SoClipPlaneManip>, boundManip<SoTransformManip>,
                         boundManip<SoDirectionalLightManip>, boundManip<SoPointLightManip>,
                         boundManip<SoSpotLightManip>, boundManip<SoClipPlaneManip>>();

template <class Plain, class Manip> bool replacePlain(SoPath* path, Manip* manip, char const* caller) {
  return SoManipChild::exchangeTail(path, manip, Plain::getClassTypeId(), caller);
}
template <class Plain, class Manip>
bool leave(SoPath* path, Manip* manip, Plain* newOne, char const* caller) {
  if (path && path->getTail() != manip) {
    SoDebugError::post(caller, "nothing was replaced: the path does not end at the manipulator");
    return false;
  }
  SoRef<SoNode> const own(newOne ? nullptr : new Plain);
  return SoManipChild::exchangeTail(path, newOne ? newOne : own.get(), Plain::getClassTypeId(), caller);
}

} // namespace

SoTransformManip::SoTransformManip(SoDragger* dragger)
    : m_child(this, {transformToManip, transformToDragger}) {
  m_child.hold(dragger);
}
SoHandleBoxManip::SoHandleBoxManip() : SoTransformManip(new SoHandleBoxDragger) {}
SoTrackballManip::SoTrackballManip() : SoTransformManip(new SoTrackballDragger) {}
SoCenterballManip::SoCenterballManip() : SoTransformManip(new SoCenterballDragger) {}
SoTransformBoxManip::SoTransformBoxManip() : SoTransformManip(new SoTransformBoxDragger) {}
SoJackManip::SoJackManip() : SoTransformManip(new SoJackDragger) {}
SoTabBoxManip::SoTabBoxManip() : SoTransformManip(new SoTabBoxDragger) {}
SoTransformerManip::SoTransformerManip() : SoTransformManip(new SoTransformerDragger) {}

SoDirectionalLightManip::SoDirectionalLightManip()
    : m_child(this, {directionalToManip, directionalToDragger}) {
  m_child.hold(new SoDirectionalLightDragger);
}
SoPointLightManip::SoPointLightManip() : m_child(this, {pointToManip, pointToDragger}) {
  m_child.hold(new SoPointLightDragger);
}
SoSpotLightManip::SoSpotLightManip() : m_child(this, {spotToManip, spotToDragger}) {
  m_child.hold(new SoSpotLightDragger);
}
SoClipPlaneManip::SoClipPlaneManip() : m_child(this, {planeToManip, planeToDragger}) {
  m_child.hold(new SoClipPlaneDragger);
}

bool SoTransformManip::replaceNode(SoPath* path) {
  return replacePlain<SoTransform>(path, this, "SoTransformManip::replaceNode");
}
bool SoTransformManip::replaceManip(SoPath* path, SoTransform* newOne) {
  return leave(path, this, newOne, "SoTransformManip::replaceManip");
}
bool SoDirectionalLightManip::replaceNode(SoPath* path) {
  return replacePlain<SoDirectionalLight>(path, this, "SoDirectionalLightManip::replaceNode");
}
bool SoDirectionalLightManip::replaceManip(SoPath* path, SoDirectionalLight* newOne) {
  return leave(path, this, newOne, "SoDirectionalLightManip::replaceManip");
}
bool SoPointLightManip::replaceNode(SoPath* path) {
  return replacePlain<SoPointLight>(path, this, "SoPointLightManip::replaceNode");
}
bool SoPointLightManip::replaceManip(SoPath* path, SoPointLight* newOne) {
  return leave(path, this, newOne, "SoPointLightManip::replaceManip");
}
bool SoSpotLightManip::replaceNode(SoPath* path) {
  return replacePlain<SoSpotLight>(path, this, "SoSpotLightManip::replaceNode");
}
bool SoSpotLightManip::replaceManip(SoPath* path, SoSpotLight* newOne) {
  return leave(path, this, newOne, "SoSpotLightManip::replaceManip");
}
bool SoClipPlaneManip::replaceNode(SoPath* path) {
  return replacePlain<SoClipPlane>(path, this, "SoClipPlaneManip::replaceNode");
}
bool SoClipPlaneManip::replaceManip(SoPath* path, SoClipPlane* newOne) {
  return leave(path, this, newOne, "SoClipPlaneManip::replaceManip");
}
