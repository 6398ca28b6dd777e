#pragma once

#include <memory>
#include <optional>

#include "kestrava/base/SbColorRGBA.h"
#include "kestrava/base/SbMatrix.h"
#include "kestrava/render/SoTextBitmap.h"

class SoState;
class SoText2;

/// A text in the plane of the screen, as a draw list has it: pixels around a point of the scene. It does not
/// depend on the view.
struct SoScreenText {
  int item = -1; // of the list
  SbVec3f place; // in world coordinates
  std::shared_ptr<SoTextBitmap const> bitmap;
  SbColorRGBA color;

  /// With the font of a traversal state. Null when there is nothing to be seen.
  static std::shared_ptr<SoTextBitmap const> layOut(SoText2 const& text, SoState const& state);
  /// The whole pixel at which a text stands, the same one for who draws it and for who meets it.
  static SbVec2f snap(float x, float y) { return SbVec2f(std::floor(x + 0.5f), std::floor(y + 0.5f)); }
  /// From pixels around the origin of the visited shape, as the camera of a traversal state sees it, to
  /// coordinates of the shape. Nothing without a camera, or where it does not see the origin.
  static std::optional<SbMatrix> getPixelMatrix(SoState const& state);
};
