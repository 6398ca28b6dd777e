// What transformations, cameras and lights do to the traversal state.

#include <cmath>

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoClipPlane.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoManipEffects.h"
#include "kestrava/nodes/SoMatrixTransform.h"
#include "kestrava/nodes/SoPointLight.h"
#include "kestrava/nodes/SoResetTransform.h"
#include "kestrava/nodes/SoRotation.h"
#include "kestrava/nodes/SoRotationXYZ.h"
#include "kestrava/nodes/SoScale.h"
#include "kestrava/nodes/SoSpotLight.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/nodes/SoUnits.h"

namespace {

void multiply(SoStateAction& action, SbMatrix const& local) {
  action.getState().modify<SoModelMatrixElement>().matrix.multLeft(local);
}

/// The field's value; what stands for "no effect" when the field is ignored.
template <class Field, class T> T valueOr(Field const& field, T const& none) {
  return field.isIgnored() ? none : T(field.getValue());
}

SbVec3f const ONES(1, 1, 1);

void visitTransform(SoStateAction& action, SoTransform& node) {
  SbMatrix matrix;
  matrix.setTransform(valueOr(node.translation, SbVec3f()), valueOr(node.rotation, SbRotation()),
                      valueOr(node.scaleFactor, ONES), valueOr(node.scaleOrientation, SbRotation()),
                      valueOr(node.center, SbVec3f()));
  multiply(action, matrix);
}

void visitTranslation(SoStateAction& action, SoTranslation& node) {
  SbMatrix matrix;
  matrix.setTranslate(valueOr(node.translation, SbVec3f()));
  multiply(action, matrix);
}

void visitRotation(SoStateAction& action, SoRotation& node) {
  SbMatrix matrix;
  matrix.setRotate(valueOr(node.rotation, SbRotation()));
  multiply(action, matrix);
}

void visitRotationXYZ(SoStateAction& action, SoRotationXYZ& node) {
  SbVec3f axis;
  axis[std::clamp(valueOr(node.axis, 0), 0, 2)] = 1;
  SbMatrix matrix;
  matrix.setRotate(SbRotation(axis, valueOr(node.angle, 0.0f)));
  multiply(action, matrix);
}

void visitScale(SoStateAction& action, SoScale& node) {
  SbMatrix matrix;
  matrix.setScale(valueOr(node.scaleFactor, ONES));
  multiply(action, matrix);
}

void visitMatrix(SoStateAction& action, SoMatrixTransform& node) {
  multiply(action, valueOr(node.matrix, SbMatrix()));
}

void visitReset(SoStateAction& action, SoResetTransform& node) {
  int const what = node.whatToReset.isIgnored() ? 0 : node.whatToReset.getValue();
  if (what & SoResetTransform::BBOX) action.resetBounds();
  if (!(what & SoResetTransform::TRANSFORM)) return;
  SoState& state = action.getState();
  state.noteOutsideRead();
  state.modify<SoModelMatrixElement>().matrix = state.get<SoOuterMatrixElement>().matrix.inverse();
}

void visitUnits(SoStateAction& action, SoUnits& node) {
  static constexpr float METRES[] = {1,    1e-2f,   1e-3f,   1e-6f,           1e-6f,   1e-9f,     1e-10f,
                                     1e3f, 0.3048f, 0.0254f, 0.0254f / 72.0f, 0.9144f, 1609.344f, 1852};
  if (node.units.isIgnored()) return;
  SoState& state = action.getState();
  int const unit = std::clamp<int>(node.units.getValue(), 0, static_cast<int>(std::size(METRES)) - 1);
  float const before = state.get<SoUnitsElement>().metres;
  SbMatrix matrix;
  matrix.setScale(METRES[unit] / before);
  multiply(action, matrix);
  state.modify<SoUnitsElement>().metres = METRES[unit];
}

SbMatrix toWorld(SoState const& state) {
  return state.get<SoModelMatrixElement>().matrix * state.get<SoOuterMatrixElement>().matrix;
}

void visitCamera(SoStateAction& action, SoCamera& camera) {
  SoState& state = action.getState();
  SbMatrix const matrix = toWorld(state);
  SbViewVolume volume = camera.getViewVolume(state.get<SoViewportElement>().region.getViewportAspectRatio());
  if (!matrix.isIdentity()) {
    SbVec3f translation, scale;
    SbRotation rotation, scaleOrientation;
    matrix.getTransform(translation, rotation, scale, scaleOrientation);
    SbVec3f const position = volume.getProjectionPoint();
    volume.rotateCamera(rotation);
    volume.translateCamera(matrix.multVecMatrix(position) - position);
  }
  auto& element = state.modify<SoCameraElement>();
  element.set = true;
  element.volume = volume;
  element.camera = &camera;
}

SoLightElement::Light* addLight(SoStateAction& action, SoLight& node, SoLightElement::Light::Kind kind) {
  if (!valueOr(node.on, true)) return nullptr;
  auto& lights = action.getState().modify<SoLightElement>().lights;
  SoLightElement::Light light;
  light.kind = kind;
  light.color = SbColor(valueOr(node.color, SbColor(1, 1, 1)) * valueOr(node.intensity, 1.0f));
  light.attenuation = action.getState().peek<SoEnvironmentElement>().attenuation;
  return &lights.emplace_back(light);
}

SbVec3f worldDirection(SoStateAction& action, SbVec3f const& direction) {
  return toWorld(action.getState()).multDirMatrix(direction).normalized();
}

void visitDirectionalLight(SoStateAction& action, SoDirectionalLight& node) {
  auto* light = addLight(action, node, SoLightElement::Light::DIRECTIONAL);
  if (light) light->direction = worldDirection(action, node.direction.getValue());
}

void visitPointLight(SoStateAction& action, SoPointLight& node) {
  auto* light = addLight(action, node, SoLightElement::Light::POINT);
  if (light) light->position = toWorld(action.getState()).multVecMatrix(node.location.getValue());
}

void visitSpotLight(SoStateAction& action, SoSpotLight& node) {
  auto* light = addLight(action, node, SoLightElement::Light::SPOT);
  if (!light) return;
  light->position = toWorld(action.getState()).multVecMatrix(node.location.getValue());
  light->direction = worldDirection(action, node.direction.getValue());
  light->dropOffRate = valueOr(node.dropOffRate, 0.0f);
  light->cutOffAngle = valueOr(node.cutOffAngle, 0.785398f);
}

void visitClipPlane(SoStateAction& action, SoClipPlane& node) {
  if (!valueOr(node.on, true) || node.plane.isIgnored()) return;
  SbPlane plane = node.plane.getValue();
  SbMatrix const matrix = toWorld(action.getState());
  bool invertible = false;
  matrix.inverse(&invertible);
  if (!invertible) return;
  plane.transform(matrix);
  action.getState().modify<SoClipPlaneElement>().planes.push_back(plane);
}

bool const registered =
    SoAction::addMethods<visitTransform, visitTranslation, visitRotation, visitRotationXYZ, visitScale,
                         visitMatrix, visitReset, visitUnits, visitCamera, visitDirectionalLight,
                         visitPointLight, visitSpotLight, visitClipPlane>();

} // namespace

void SoApplyEffect(SoStateAction& action, SoTransform& node) { visitTransform(action, node); }
void SoApplyEffect(SoStateAction& action, SoDirectionalLight& node) { visitDirectionalLight(action, node); }
void SoApplyEffect(SoStateAction& action, SoPointLight& node) { visitPointLight(action, node); }
void SoApplyEffect(SoStateAction& action, SoSpotLight& node) { visitSpotLight(action, node); }
void SoApplyEffect(SoStateAction& action, SoClipPlane& node) { visitClipPlane(action, node); }
