#include "kestrava/render/SoTessellation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kestrava/actions/SoElements.h"
#include "kestrava/actions/SoState.h"

namespace {

float inRange(float value) { return value >= 0 ? std::min(value, 1.0f) : 0; }

/// Of something round with these bounds, at the distance of its centre.
float pixelsAcross(SbViewVolume const& volume, SbViewportRegion const& region, SbBox3f const& box) {
  float const height = region.getViewportSizePixels()[1];
  float perPixel = volume.getHeight() / std::max(1.0f, height);
  if (volume.getProjectionType() == SbViewVolume::PERSPECTIVE) {
    float const depth = (box.getCenter() - volume.getProjectionPoint()).dot(volume.getProjectionDirection());
    perPixel *= std::max(1.0f, std::abs(depth) / volume.getNearDist());
  }
  return perPixel > 0 ? box.getSize().length() / std::numbers::sqrt3_v<float> / perPixel : 0;
}

/// As many pieces as keep a circle's corners and its curve apart by no more than a part of a pixel.
float slicesWanted(float value, float pixels) {
  float const apart = 2 * std::exp2(-5 * inRange(value));
  return std::numbers::pi_v<float> * std::sqrt(pixels / (4 * apart));
}

constexpr int STEPS[] = {8, 12, 16, 24, 32, 48, 64, 96, 128, 192, 256};

/// Few different numbers, so that many shapes share a mesh.
int slicesFor(float value, float pixels) {
  float const wanted = slicesWanted(value, pixels);
  for (int const step : STEPS) {
    if (static_cast<float>(step) >= wanted) return step;
  }
  return STEPS[std::size(STEPS) - 1];
}

} // namespace

bool SoTessellation::ScreenSize::fits(SbViewVolume const& volume, SbViewportRegion const& region) const {
  // Among many shapes some stand just at the limit of a step. A quarter coarser than wanted is not seen, and being
  // too fine harms little: so a list that was made just now serves until something is half as large again.
  float const pixels = pixelsAcross(volume, region, box);
  float const wanted = std::clamp(slicesWanted(value, pixels), 0.0f, 256.0f);
  return wanted <= 1.25f * static_cast<float>(slices) && slicesFor(value, pixels * 8) >= slices;
}

int SoTessellation::getSlices(SoState const& state, SbBox3f const& bounds) {
  auto const& complexity = state.get<SoComplexityElement>();
  if (complexity.type == SoComplexityElement::SCREEN_SPACE) {
    if (auto const& camera = state.get<SoCameraElement>(); camera.set) {
      SbMatrix const toWorld =
          state.get<SoModelMatrixElement>().matrix * state.get<SoOuterMatrixElement>().matrix;
      ScreenSize size{bounds.transformed(toWorld), complexity.value, 0};
      size.slices =
          slicesFor(size.value, pixelsAcross(camera.volume, state.get<SoViewportElement>().region, size.box));
      if (auto* const sizes = state.peek<SoScreenSizesElement>().sizes) sizes->push_back(size);
      return size.slices;
    }
  }
  int const slices = 8 + static_cast<int>(std::lround(48 * inRange(complexity.value)));
  return (slices + 3) / 4 * 4;
}
