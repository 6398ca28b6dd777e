// The meshes of texts that stand in the scene.

#include <algorithm>
#include <cmath>

#include "kestrava/nodes/SoAsciiText.h"
#include "kestrava/nodes/SoText2.h"
#include "kestrava/nodes/SoText3.h"
#include "kestrava/render/SoMeshBuilder.h"
#include "kestrava/render/SoTextOutline.h"

namespace {

class TextBuilder {
 public:
  TextBuilder(SoShape const& shape, SoState const& state, SoMesh& mesh)
      : m_shape(shape), m_mesh(mesh), m_font(state.get<SoFontElement>()) {
    SoBinding const binding = state.get<SoMaterialBindingElement>().value;
    m_perPart = binding == SoBinding::PER_PART || binding == SoBinding::PER_PART_INDEXED;
    m_texCoords = state.get<SoTextureCoordinateElement>();
    m_textured = state.get<SoTextureImageElement>().id != 0 &&
                 m_texCoords.source != SoTextureCoordinateElement::ENVIRONMENT;
    m_steps =
        1 + static_cast<int>(std::lround(8 * std::clamp(state.get<SoComplexityElement>().value, 0.0f, 1.0f)));
  }

  /// `justification` 0 left, 1 right, 2 centre; `widths` as SoAsciiText has them.
  void layOut(SoMFString const& strings, float spacing, int justification, SoMFFloat const* widths) {
    SbString error;
    for (int i = 0; i < strings.getNumValues(); ++i) {
      Line line{SoTextOutline::layOut(strings[i], m_font.name, m_steps, error), m_font.size, 0, 0};
      float width = line.text.width * m_font.size;
      if (widths && i < widths->getNumValues() && (*widths)[i] > 0 && width > 0) {
        line.xScale *= (*widths)[i] / width;
        width = (*widths)[i];
      }
      line.x = justification == 1 ? -width : justification == 2 ? -width / 2 : 0;
      line.y = -static_cast<float>(i) * spacing * m_font.size;
      m_lines.push_back(std::move(line));
    }
    if (!error.empty()) SoPostDataError(m_shape, error);
  }

  /// The filled faces at a depth, seen from the front or from the back.
  void faces(float z, bool isFront, int part) {
    SbVec3f const normal(0, 0, isFront ? 1 : -1);
    for (Line const& line : m_lines) {
      for (auto const& place : line.text.glyphs) {
        auto const first = static_cast<std::uint32_t>(m_mesh.positions.size());
        for (SbVec2f const& p : place.glyph->points) vertex(at(line, place, p, z), normal, part);
        auto const& t = place.glyph->triangles;
        for (size_t i = 0; i < t.size(); i += 3) {
          triangle(first + t[i], first + t[isFront ? i + 1 : i + 2], first + t[isFront ? i + 2 : i + 1],
                   part);
        }
      }
    }
  }

  void sides(float depth, int part) {
    for (Line const& line : m_lines) {
      for (auto const& place : line.text.glyphs) {
        for (auto const& contour : place.glyph->contours) {
          for (size_t i = 0; i < contour.size(); ++i) {
            side(at(line, place, contour[i], 0), at(line, place, contour[(i + 1) % contour.size()], 0), depth,
                 part);
          }
        }
      }
    }
  }

  void finish() {
    if (!m_textured) return;
    SbBox3f const bounds = m_mesh.getBounds();
    for (SbVec3f const& p : m_mesh.positions)
      m_mesh.texCoords.push_back(SoProjectTexture(m_texCoords, bounds, p));
  }

 private:
  struct Line {
    SoTextLine text;
    float xScale, x, y;
  };

  SbVec3f at(Line const& line, SoTextLine::Place const& place, SbVec2f const& p, float z) const {
    return SbVec3f(line.x + (place.x + p[0]) * line.xScale, line.y + p[1] * m_font.size, z);
  }
  std::uint32_t vertex(SbVec3f const& point, SbVec3f const& normal, int part) {
    m_mesh.positions.push_back(point);
    m_mesh.normals.push_back(normal);
    if (m_perPart) m_mesh.materials.push_back(part);
    return static_cast<std::uint32_t>(m_mesh.positions.size() - 1);
  }
  void triangle(std::uint32_t a, std::uint32_t b, std::uint32_t c, int part) {
    m_mesh.triangles.insert(m_mesh.triangles.end(), {a, b, c});
    m_mesh.faces.push_back(part);
  }
  // The filled side lies to the left of the contour, so what is outside lies to the right.
  void side(SbVec3f const& from, SbVec3f const& to, float depth, int part) {
    SbVec3f const along = to - from, back(0, 0, -depth);
    SbVec3f const normal = SbVec3f(along[1], -along[0], 0).normalized();
    std::uint32_t const a = vertex(from, normal, part), b = vertex(from + back, normal, part),
                        c = vertex(to + back, normal, part), d = vertex(to, normal, part);
    triangle(a, b, c, part);
    triangle(a, c, d, part);
  }

  SoShape const& m_shape;
  SoMesh& m_mesh;
  SoFontElement m_font;
  SoTextureCoordinateElement m_texCoords;
  std::vector<Line> m_lines;
  bool m_perPart, m_textured;
  int m_steps;
};

std::uint64_t textKey(std::uint64_t key, SoState const& state) {
  return SoMixKey(key, state.get<SoFontElement>().id);
}

} // namespace

std::uint64_t SoText3::getMeshKey(SoState const& state) const {
  return textKey(SoShape::getMeshKey(state), state);
}
std::uint64_t SoAsciiText::getMeshKey(SoState const& state) const {
  return textKey(SoShape::getMeshKey(state), state);
}

void SoText3::buildMesh(SoState const& state, SoMesh& mesh) const {
  constexpr float DEPTH = 1;
  TextBuilder builder(*this, state, mesh);
  builder.layOut(string, spacing.getValue(), justification.getValue(), nullptr);
  int const shown = parts.isIgnored() ? static_cast<int>(FRONT) : parts.getValue();
  if (shown & FRONT) builder.faces(0, true, 0);
  if (shown & SIDES) builder.sides(DEPTH, 1);
  if (shown & BACK) builder.faces(-DEPTH, false, 2);
  builder.finish();
}

void SoAsciiText::buildMesh(SoState const& state, SoMesh& mesh) const {
  TextBuilder builder(*this, state, mesh);
  builder.layOut(string, spacing.getValue(), justification.getValue(), width.isIgnored() ? nullptr : &width);
  builder.faces(0, true, 0);
  builder.finish();
}

// Drawn in pixels, by who draws: in the scene it is a point.
void SoText2::buildMesh(SoState const&, SoMesh&) const {}
SbBox3f SoText2::getBounds(SoState const&) const { return SbBox3f(SbVec3f(), SbVec3f()); }
