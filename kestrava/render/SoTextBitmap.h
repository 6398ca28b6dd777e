#pragma once

#include <memory>
#include <span>
#include <vector>

#include "kestrava/base/SbBox2f.h"
#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"

/// How much of each pixel a character covers, 0 to 255, in rows from the bottom up.
struct SoGlyphBitmap {
  int width = 0, height = 0;
  int left = 0, bottom = 0; // of the lower left pixel, from the origin of the character
  int advance = 0;          // to the origin of the next character
  std::vector<unsigned char> coverage;
};

/// Lines of text laid out in whole pixels around an origin on the baseline of the first line.
struct SoTextBitmap {
  struct Place {
    std::shared_ptr<SoGlyphBitmap const> glyph;
    int x, y; // of the origin of the character
  };
  struct Layout {
    SbName font;
    float size = 10;       // pixels
    float spacing = 1;     // from line to line, in sizes
    int justification = 0; // 0 left, 1 right, 2 centre
  };
  static constexpr int MAX_SIZE = 400; // larger characters are drawn at this size

  std::vector<Place> glyphs;
  SbBox2f box; // around all lines, from their descent to their ascent

  /// `error` as of SoFontFaces::find(). Null when there is nothing to be seen.
  static std::shared_ptr<SoTextBitmap const> layOut(std::span<SbString const> lines, Layout const& layout,
                                                    SbString& error);
};
