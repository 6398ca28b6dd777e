#include "kestrava/render/SoTextOutline.h"

#include <GL/glu.h>

#include <deque>
#include <map>
#include <tuple>

#include "kestrava/render/SoFontFaces.h"
#include FT_OUTLINE_H

namespace {

using Glyphs = std::map<std::tuple<FT_Face, char32_t, int>, std::shared_ptr<SoGlyph const>>;

/// Follows an outline and makes its curves straight pieces.
struct Flattener {
  SoGlyph& glyph;
  float scale;
  int steps;
  SbVec2f at;

  SbVec2f point(FT_Vector const* v) const {
    return SbVec2f(static_cast<float>(v->x) * scale, static_cast<float>(v->y) * scale);
  }
  void add(SbVec2f const& p) {
    auto& contour = glyph.contours.back();
    if (contour.empty() || contour.back() != p) contour.push_back(p);
    at = p;
  }
  static int move(FT_Vector const* to, void* user) {
    auto& self = *static_cast<Flattener*>(user);
    self.glyph.contours.emplace_back();
    self.add(self.point(to));
    return 0;
  }
  static int line(FT_Vector const* to, void* user) {
    auto& self = *static_cast<Flattener*>(user);
    self.add(self.point(to));
    return 0;
  }
  static int conic(FT_Vector const* control, FT_Vector const* to, void* user) {
    auto& self = *static_cast<Flattener*>(user);
    SbVec2f const a = self.at, b = self.point(control), c = self.point(to);
    for (int i = 1; i <= self.steps; ++i) {
      float const t = static_cast<float>(i) / static_cast<float>(self.steps), u = 1 - t;
      self.add(a * (u * u) + b * (2 * u * t) + c * (t * t));
    }
    return 0;
  }
  static int cubic(FT_Vector const* first, FT_Vector const* second, FT_Vector const* to, void* user) {
    auto& self = *static_cast<Flattener*>(user);
    SbVec2f const a = self.at, b = self.point(first), c = self.point(second), d = self.point(to);
    for (int i = 1; i <= self.steps; ++i) {
      float const t = static_cast<float>(i) / static_cast<float>(self.steps), u = 1 - t;
      self.add(a * (u * u * u) + b * (3 * u * u * t) + c * (3 * u * t * t) + d * (t * t * t));
    }
    return 0;
  }
};

struct Filling {
  SoGlyph& glyph;
  // What the tessellator refers to by address; indices of the points.
  std::deque<std::uint32_t> indices;

  std::uint32_t* add(double const* coords) {
    glyph.points.emplace_back(static_cast<float>(coords[0]), static_cast<float>(coords[1]));
    return &indices.emplace_back(static_cast<std::uint32_t>(glyph.points.size() - 1));
  }
};

void onVertex(void* vertex, void* user) {
  static_cast<Filling*>(user)->glyph.triangles.push_back(*static_cast<std::uint32_t*>(vertex));
}
void onCombine(GLdouble coords[3], void* [4], GLfloat[4], void** made, void* user) {
  *made = static_cast<Filling*>(user)->add(coords);
}
// With this callback the tessellator makes nothing but triangles.
void onEdgeFlag(GLboolean, void*) {}

void fill(SoGlyph& glyph) {
  GLUtesselator* const tess = gluNewTess();
  if (!tess) return;
  Filling filling{glyph, {}};
  gluTessCallback(tess, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(onVertex));
  gluTessCallback(tess, GLU_TESS_COMBINE_DATA, reinterpret_cast<_GLUfuncptr>(onCombine));
  gluTessCallback(tess, GLU_TESS_EDGE_FLAG_DATA, reinterpret_cast<_GLUfuncptr>(onEdgeFlag));
  gluTessProperty(tess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
  gluTessNormal(tess, 0, 0, 1);
  gluTessBeginPolygon(tess, &filling);
  for (auto const& contour : glyph.contours) {
    gluTessBeginContour(tess);
    for (SbVec2f const& p : contour) {
      GLdouble coords[3] = {p[0], p[1], 0};
      gluTessVertex(tess, coords, filling.add(coords));
    }
    gluTessEndContour(tess);
  }
  gluTessEndPolygon(tess);
  gluDeleteTess(tess);
  glyph.triangles.resize(glyph.triangles.size() / 3 * 3);
}

/// With the fonts locked.
std::shared_ptr<SoGlyph const> glyphOf(FT_Face face, char32_t character, int steps) {
  static Glyphs& glyphs = *new Glyphs;
  auto& known = glyphs[{face, character, steps}];
  if (known) return known;
  auto glyph = std::make_shared<SoGlyph>();
  float const scale = 1.0f / static_cast<float>(face->units_per_EM > 0 ? face->units_per_EM : 1000);
  if (FT_Load_Char(face, character, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) == 0) {
    glyph->advance = static_cast<float>(face->glyph->metrics.horiAdvance) * scale;
    FT_Outline& outline = face->glyph->outline;
    // Some fonts fill what lies to the left, others what lies to the right.
    if (FT_Outline_Get_Orientation(&outline) == FT_ORIENTATION_TRUETYPE) FT_Outline_Reverse(&outline);
    FT_Outline_Funcs const functions{
        Flattener::move, Flattener::line, Flattener::conic, Flattener::cubic, 0, 0};
    Flattener flattener{*glyph, scale, steps, {}};
    FT_Outline_Decompose(&outline, &functions, &flattener);
    for (auto& contour : glyph->contours) {
      while (contour.size() > 1 && contour.front() == contour.back()) contour.pop_back();
    }
    std::erase_if(glyph->contours, [](auto const& contour) { return contour.size() < 3; });
    fill(*glyph);
  }
  known = glyph;
  return glyph;
}

} // namespace

SoTextLine SoTextOutline::layOut(SbString const& text, SbName const& font, int steps, SbString& error) {
  SoFontFaces& fonts = SoFontFaces::instance();
  auto const lock = fonts.lock();
  SoTextLine line;
  FT_Face const face = fonts.find(font, error);
  if (!face) return line;
  for (char32_t const character : charactersOf(text)) {
    auto glyph = glyphOf(face, character, steps);
    float const advance = glyph->advance;
    line.glyphs.push_back({std::move(glyph), line.width});
    line.width += advance;
  }
  return line;
}

std::u32string SoTextOutline::charactersOf(SbString const& text) {
  std::u32string characters;
  std::u16string const units = text.toUtf16();
  for (size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (character >= 0xd800 && character < 0xdc00 && i + 1 < units.size()) {
      character = 0x10000 + ((character - 0xd800) << 10) + (units[++i] - 0xdc00u);
    }
    characters.push_back(character);
  }
  return characters;
}
