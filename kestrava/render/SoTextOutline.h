#pragma once

#include <memory>
#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"
#include "kestrava/base/SbVec2f.h"

/// The shape of a character, in units of the font's height: x from its origin to the right, y up from the
/// baseline.
struct SoGlyph {
  float advance = 0;                          // to the origin of the next character
  std::vector<std::vector<SbVec2f>> contours; // closed; the filled side lies to the left
  std::vector<SbVec2f> points;                // of the filled face
  std::vector<std::uint32_t> triangles;       // three indices into `points` each, counterclockwise
};

/// A line of text that is laid out.
struct SoTextLine {
  struct Place {
    std::shared_ptr<SoGlyph const> glyph;
    float x;
  };
  std::vector<Place> glyphs;
  float width = 0;
};

/// The outlines of fonts. Fonts and characters are kept for as long as the program runs; usable from any
/// thread.
class SoTextOutline {
 public:
  SoTextOutline() = delete;
  /// Lays a line out with a font, see SoFontFaces::find(). `steps` is the number of straight pieces of a curve.
  /// Without any font the line is empty.
  static SoTextLine layOut(SbString const& text, SbName const& font, int steps, SbString& error);
  static std::u32string charactersOf(SbString const& text);
};
