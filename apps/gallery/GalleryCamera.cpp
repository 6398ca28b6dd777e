#include "apps/gallery/GalleryCamera.h"

#include <algorithm>
#include <cmath>

#include "kestrava/nodes/SoPerspectiveCamera.h"

void GalleryCamera::fit(SoCamera& camera, float heightAngle, float aspect) {
  auto* const perspective = dynamic_cast<SoPerspectiveCamera*>(&camera);
  if (!perspective) return;
  // Below 1 the camera itself opens its angle.
  float const narrower = std::max(1.0f, 4.0f / 3 / std::max(aspect, 1.0f));
  float const angle = 2 * std::atan(std::tan(heightAngle / 2) * narrower);
  if (perspective->heightAngle.getValue() != angle) perspective->heightAngle = angle;
}

float GalleryCamera::getHeightAngle(SoCamera const& camera) {
  auto const* const perspective = dynamic_cast<SoPerspectiveCamera const*>(&camera);
  return perspective ? perspective->heightAngle.getValue() : 0;
}
