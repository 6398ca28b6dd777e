#include "kestrava_qt/SoCameraMotion.h"

#include <cmath>

#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"

namespace {

/// The place of a point on a ball in the middle of the window, which goes over into a hyperbola outside, so that
/// every point has one.
SbVec3f onBall(SbVec2f const& point, float aspect) {
  SbVec3f p((point[0] * 2 - 1) * std::max(aspect, 1.0f), (point[1] * 2 - 1) / std::min(aspect, 1.0f), 0);
  constexpr float RADIUS = 0.8f;
  float const square = p[0] * p[0] + p[1] * p[1];
  p[2] = square < RADIUS * RADIUS / 2 ? std::sqrt(RADIUS * RADIUS - square) : RADIUS * RADIUS / 2 / std::sqrt(square);
  return p;
}

/// The point of the plane through the focus, across the view, that lies under a point of the window.
SbVec3f onFocalPlane(SoCamera const& camera, SbVec2f const& point, float aspect) {
  SbViewVolume const volume = camera.getViewVolume(aspect);
  SbVec3f result = SoCameraMotion::getFocus(camera);
  volume.getPlane(camera.focalDistance.getValue()).intersect(volume.projectPointToLine(point), result);
  return result;
}

SbVec3f direction(SoCamera const& camera) { return camera.orientation.getValue().multVec(SbVec3f(0, 0, -1)); }

}  // namespace

SbVec3f SoCameraMotion::getFocus(SoCamera const& camera) {
  return camera.position.getValue() + direction(camera) * camera.focalDistance.getValue();
}

void SoCameraMotion::rotate(SoCamera& camera, SbVec2f const& from, SbVec2f const& to, float aspect) {
  SbRotation const turn(onBall(from, aspect), onBall(to, aspect));
  SbVec3f const focus = getFocus(camera);
  // The scene follows the ball when the camera goes the other way.
  camera.orientation = turn.inverse() * camera.orientation.getValue();
  camera.position = focus - direction(camera) * camera.focalDistance.getValue();
}

void SoCameraMotion::pan(SoCamera& camera, SbVec2f const& from, SbVec2f const& to, float aspect) {
  SbVec3f const way = onFocalPlane(camera, from, aspect) - onFocalPlane(camera, to, aspect);
  camera.position = camera.position.getValue() + way;
}

void SoCameraMotion::zoom(SoCamera& camera, float factor, SbVec2f const& at, float aspect) {
  SbVec3f const target = onFocalPlane(camera, at, aspect);
  if (auto* const flat = dynamic_cast<SoOrthographicCamera*>(&camera)) {
    flat->scaleHeight(factor);
    camera.position = camera.position.getValue() + target - onFocalPlane(camera, at, aspect);
    return;
  }
  camera.position = target + (camera.position.getValue() - target) * factor;
  camera.focalDistance = camera.focalDistance.getValue() * factor;
}

SoCamera* SoCameraMotion::makeOtherProjection(SoCamera const& camera) {
  SoCamera* other = nullptr;
  float const distance = camera.focalDistance.getValue();
  if (auto const* const deep = dynamic_cast<SoPerspectiveCamera const*>(&camera)) {
    auto* const flat = new SoOrthographicCamera;
    flat->height = 2 * distance * std::tan(deep->heightAngle.getValue() / 2);
    other = flat;
    other->position = camera.position.getValue();
    other->focalDistance = distance;
  } else {
    auto* const made = new SoPerspectiveCamera;
    float const height = static_cast<SoOrthographicCamera const&>(camera).height.getValue();
    float const away = height / 2 / std::tan(made->heightAngle.getValue() / 2);
    other = made;
    other->position = getFocus(camera) - direction(camera) * away;
    other->focalDistance = away;
  }
  other->orientation = camera.orientation.getValue();
  other->viewportMapping = camera.viewportMapping.getValue();
  other->aspectRatio = camera.aspectRatio.getValue();
  return other;
}
