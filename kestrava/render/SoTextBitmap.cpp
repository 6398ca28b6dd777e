#include "kestrava/render/SoTextBitmap.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "kestrava/render/SoFontFaces.h"
#include "kestrava/render/SoTextOutline.h"

namespace {

using Glyphs = std::map<std::tuple<FT_Face, char32_t, int>, std::shared_ptr<SoGlyphBitmap const>>;

constexpr int FAR = 30000; // pixels

/// So many bytes after the last time, characters that no text has any more are given up: a text whose size
/// changes with every frame must not fill the memory.
constexpr size_t MAX_NEW_BYTES = size_t{16} << 20;

/// With the fonts locked and the face at its size.
std::shared_ptr<SoGlyphBitmap const> glyphOf(FT_Face face, char32_t character, int size) {
  static Glyphs& glyphs = *new Glyphs;
  static size_t newBytes = 0;
  if (newBytes > MAX_NEW_BYTES) {
    std::erase_if(glyphs, [](auto const& entry) { return entry.second.use_count() == 1; });
    newBytes = 0;
  }
  auto& known = glyphs[{face, character, size}];
  if (known) return known;
  auto glyph = std::make_shared<SoGlyphBitmap>();
  if (FT_Load_Char(face, character, FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) == 0) {
    FT_GlyphSlot const slot = face->glyph;
    FT_Bitmap const& bitmap = slot->bitmap;
    glyph->advance = static_cast<int>((slot->advance.x + 32) >> 6);
    if (bitmap.pixel_mode == FT_PIXEL_MODE_GRAY) {
      glyph->width = static_cast<int>(bitmap.width);
      glyph->height = static_cast<int>(bitmap.rows);
      glyph->left = slot->bitmap_left;
      glyph->bottom = slot->bitmap_top - glyph->height;
      for (int row = glyph->height - 1; row >= 0; --row) {
        unsigned char const* const from = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
        glyph->coverage.insert(glyph->coverage.end(), from, from + glyph->width);
      }
    }
  }
  newBytes += sizeof(SoGlyphBitmap) + glyph->coverage.size();
  return known = glyph;
}

} // namespace

std::shared_ptr<SoTextBitmap const> SoTextBitmap::layOut(std::span<SbString const> lines,
                                                         Layout const& layout, SbString& error) {
  if (!(layout.size > 0)) return nullptr;
  SoFontFaces& fonts = SoFontFaces::instance();
  auto const lock = fonts.lock();
  FT_Face const face = fonts.find(layout.font, error);
  int const size =
      static_cast<int>(std::clamp(std::lround(std::min<double>(layout.size, MAX_SIZE)), 1L, long{MAX_SIZE}));
  if (!face || FT_Set_Pixel_Sizes(face, 0, static_cast<unsigned>(size)) != 0) return nullptr;
  auto text = std::make_shared<SoTextBitmap>();
  auto const ascent = static_cast<float>(face->size->metrics.ascender) / 64;
  auto const descent = static_cast<float>(face->size->metrics.descender) / 64;
  double const step = std::isfinite(layout.spacing) ? double{layout.spacing} * size : size;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (std::abs(static_cast<double>(i) * step) > FAR) break;
    size_t const first = text->glyphs.size();
    int width = 0;
    int const y = static_cast<int>(-std::round(static_cast<double>(i) * step));
    for (char32_t const character : SoTextOutline::charactersOf(lines[i])) {
      // Far beyond any screen; characters that stand over others have no width.
      if (width > FAR || text->glyphs.size() - first > size_t{FAR}) break;
      auto glyph = glyphOf(face, character, size);
      int const advance = glyph->advance;
      text->glyphs.push_back({std::move(glyph), width, y});
      width += advance;
    }
    int const shift = layout.justification == 1 ? -width : layout.justification == 2 ? -width / 2 : 0;
    for (size_t k = first; k < text->glyphs.size(); ++k) text->glyphs[k].x += shift;
    if (width == 0) continue;
    text->box.extendBy(SbVec2f(static_cast<float>(shift), static_cast<float>(y) + descent));
    text->box.extendBy(SbVec2f(static_cast<float>(shift + width), static_cast<float>(y) + ascent));
  }
  if (text->box.isEmpty()) return nullptr;
  return text;
}
