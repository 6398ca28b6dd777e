#include "kestrava/nodes/SoCamera.h"

#include <algorithm>
#include <cmath>

#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"

SbViewVolume SoCamera::getViewVolume(float viewportAspect) const {
  bool const adjusts = viewportMapping.getValue() == ADJUST_CAMERA && viewportAspect > 0;
  float const aspect = adjusts ? viewportAspect : aspectRatio.getValue();
  SbViewVolume volume = volumeOf(aspect > 0 ? aspect : 1);
  volume.rotateCamera(orientation.getValue());
  volume.translateCamera(position.getValue());
  return volume;
}

void SoCamera::viewAll(SoNode* root, SbViewportRegion const& region, float slack) {
  SoGetBoundingBoxAction action(region);
  action.apply(root);
  viewAll(action.getBoundingBox(), region.getViewportAspectRatio(), slack);
}

void SoCamera::viewAll(SbBox3f const& bounds, float viewportAspect, float slack) {
  if (bounds.isEmpty()) return;
  float radius = bounds.getSize().length() / 2;
  if (!std::isfinite(radius)) return;
  if (radius <= 0) radius = 1;
  bool const adjusts = viewportMapping.getValue() == ADJUST_CAMERA && viewportAspect > 0;
  viewSphere(bounds.getCenter(), radius, adjusts ? viewportAspect : aspectRatio.getValue());
  float const distance = (bounds.getCenter() - position.getValue()).length();
  focalDistance = distance;
  nearDistance = std::max(distance - radius * slack, 0.001f * radius);
  farDistance = distance + radius * slack;
}

void SoCamera::pointAt(SbVec3f const& target) {
  SbVec3f back = position.getValue() - target;
  if (back.normalize() == 0) return;
  SbVec3f right = SbVec3f(0, 1, 0).cross(back);
  if (right.normalize() < 1e-6f) right = SbVec3f(1, 0, 0);
  SbVec3f const up = back.cross(right);
  SbMatrix matrix;
  for (int i = 0; i < 3; ++i) {
    matrix[0][i] = right[i];
    matrix[1][i] = up[i];
    matrix[2][i] = back[i];
  }
  orientation = SbRotation(matrix);
}

// The narrower side of the view counts: nothing that a square viewport shows is lost in a tall one.

SbViewVolume SoPerspectiveCamera::volumeOf(float aspect) const {
  float const half = std::clamp(heightAngle.getValue(), 1e-4f, 3.14f) / 2;
  float const near = std::max(nearDistance.getValue(), 1e-6f);
  SbViewVolume volume;
  volume.perspective(2 * std::atan(std::tan(half) / std::min(aspect, 1.0f)), aspect, near,
                     std::max(farDistance.getValue(), near * 1.0001f));
  return volume;
}

void SoPerspectiveCamera::viewSphere(SbVec3f const& center, float radius, float) {
  float const half = std::clamp(heightAngle.getValue(), 1e-4f, 3.14f) / 2;
  position = center - orientation.getValue().multVec(SbVec3f(0, 0, -1)) * (radius / std::sin(half));
}

void SoPerspectiveCamera::scaleHeight(float factor) {
  if (factor > 0) heightAngle = std::clamp(heightAngle.getValue() * factor, 1e-4f, 3.14f);
}

SbViewVolume SoOrthographicCamera::volumeOf(float aspect) const {
  float const half = height.getValue() / 2 / std::min(aspect, 1.0f);
  SbViewVolume volume;
  volume.ortho(-half * aspect, half * aspect, -half, half, nearDistance.getValue(), farDistance.getValue());
  return volume;
}

void SoOrthographicCamera::viewSphere(SbVec3f const& center, float radius, float) {
  height = 2 * radius;
  position = center - orientation.getValue().multVec(SbVec3f(0, 0, -1)) * (2 * radius);
}

void SoOrthographicCamera::scaleHeight(float factor) {
  if (factor > 0) height = height.getValue() * factor;
}
