#include "kestrava/render/SoScreenText.h"

#include <cmath>

#include "kestrava/actions/SoElements.h"
#include "kestrava/actions/SoState.h"
#include "kestrava/nodes/SoText2.h"
#include "kestrava/render/SoMeshBuilder.h"

std::shared_ptr<SoTextBitmap const> SoScreenText::layOut(SoText2 const& text, SoState const& state) {
  auto const& font = state.get<SoFontElement>();
  SoTextBitmap::Layout layout;
  layout.font = font.name;
  layout.size = font.size;
  if (!text.spacing.isIgnored()) layout.spacing = text.spacing.getValue();
  if (!text.justification.isIgnored()) layout.justification = text.justification.getValue();
  SbString error;
  auto const lines = text.string.isIgnored() ? std::span<SbString const>() : text.string.values();
  auto made = SoTextBitmap::layOut(lines, layout, error);
  if (!error.empty()) SoPostDataError(text, error);
  return made;
}

std::optional<SbMatrix> SoScreenText::getPixelMatrix(SoState const& state) {
  auto const& camera = state.get<SoCameraElement>();
  if (!camera.set) return std::nullopt;
  SbViewVolume const& volume = camera.volume;
  SbMatrix const toWorld =
      state.get<SoModelMatrixElement>().matrix * state.get<SoOuterMatrixElement>().matrix;
  bool invertible = false;
  SbMatrix const toShape = toWorld.inverse(&invertible);
  SbVec3f const place = toWorld.multVecMatrix(SbVec3f());
  SbVec3f screen;
  if (!invertible || !volume.projectToScreen(place, screen)) return std::nullopt;
  float const height = state.get<SoViewportElement>().region.getViewportSizePixels()[1];
  float perPixel = volume.getHeight() / std::max(1.0f, height);
  if (volume.getProjectionType() == SbViewVolume::PERSPECTIVE) {
    perPixel *=
        (place - volume.getProjectionPoint()).dot(volume.getProjectionDirection()) / volume.getNearDist();
  }
  SbMatrix pixels;
  SbVec3f const axes[3] = {volume.getOrientation().multVec(SbVec3f(perPixel, 0, 0)),
                           volume.getOrientation().multVec(SbVec3f(0, perPixel, 0)),
                           volume.getProjectionDirection() * -perPixel};
  for (int row = 0; row < 3; ++row) {
    for (int k = 0; k < 3; ++k) pixels[row][k] = axes[row][k];
  }
  for (int k = 0; k < 3; ++k) pixels[3][k] = place[k];
  return pixels * toShape;
}

SbBox3f SoText2::getBounds(SoState const& state) const {
  SbBox3f box;
  box.extendBy(SbVec3f());
  auto const matrix = SoScreenText::getPixelMatrix(state);
  if (!matrix) return box;
  auto const bitmap = SoScreenText::layOut(*this, state);
  if (!bitmap) return box;
  SbVec2f const low = bitmap->box.getMin(), high = bitmap->box.getMax();
  for (float const x : {low[0], high[0]}) {
    for (float const y : {low[1], high[1]}) box.extendBy(matrix->multVecMatrix(SbVec3f(x, y, 0)));
  }
  return box;
}
