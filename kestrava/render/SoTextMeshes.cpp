// The meshes of texts.

#include <algorithm>
#include <bit>
#include <cmath>

#include "kestrava/nodes/SoAsciiText.h"
#include "kestrava/nodes/SoText2.h"
#include "kestrava/nodes/SoText3.h"
#include "kestrava/render/SoMeshBuilder.h"
#include "kestrava/render/SoScreenText.h"
#include "kestrava/render/SoTessellation.h"
#include "kestrava/render/SoTextOutline.h"

namespace {

/// Straight pieces of a curve of a character, which is about an eighth of a turn.
int curveSteps(SoState const& state) {
  float const size = state.get<SoFontElement>().size;
  SbBox3f const character(SbVec3f(), SbVec3f(size, size, 0));
  return std::max(1, SoTessellation::getSlices(state, character) / 7);
}

class TextBuilder {
 public:
  TextBuilder(SoShape const& shape, SoState const& state, SoMesh& mesh)
      : m_shape(shape), m_mesh(mesh), m_font(state.get<SoFontElement>()) {
    SoBinding const binding = state.get<SoMaterialBindingElement>().value;
    m_perPart = binding == SoBinding::PER_PART || binding == SoBinding::PER_PART_INDEXED;
    m_texCoords = state.get<SoTextureCoordinateElement>();
    m_textured = state.get<SoTextureImageElement>().id != 0 &&
                 m_texCoords.source != SoTextureCoordinateElement::ENVIRONMENT;
    m_steps = curveSteps(state);
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
        for (auto const& contour : place.glyph->contours) sides(line, place, contour, depth, part);
      }
    }
  }

  void finish() {
    if (!m_textured) return;
    SbBox3f const bounds = m_mesh.getBounds();
    bool const projected = m_texCoords.source == SoTextureCoordinateElement::PLANE;
    // An image is as large as the font, on faces from the lower left corner of the text, on sides along the outline.
    float const scale = m_font.size > 0 ? 1 / m_font.size : 0;
    for (size_t i = 0; i < m_mesh.positions.size(); ++i) {
      SbVec3f const& p = m_mesh.positions[i];
      if (projected) {
        m_mesh.texCoords.push_back(SoProjectTexture(m_texCoords, bounds, p));
      } else if (m_along[i] >= 0) {
        m_mesh.texCoords.push_back(SbVec3f(m_along[i], -p[2], 0) * scale);
      } else {
        SbVec3f const from = p - bounds.getMin();
        bool const isBack = m_mesh.normals[i][2] < 0;
        m_mesh.texCoords.push_back(SbVec3f(isBack ? bounds.getMax()[0] - p[0] : from[0], from[1], 0) * scale);
      }
    }
  }

 private:
  struct Line {
    SoTextLine text;
    float xScale, x, y;
  };

  SbVec3f at(Line const& line, SoTextLine::Place const& place, SbVec2f const& p, float z) const {
    return SbVec3f(line.x + (place.x + p[0]) * line.xScale, line.y + p[1] * m_font.size, z);
  }
  std::uint32_t vertex(SbVec3f const& point, SbVec3f const& normal, int part, float along = -1) {
    m_mesh.positions.push_back(point);
    m_mesh.normals.push_back(normal);
    m_along.push_back(along);
    if (m_perPart) m_mesh.materials.push_back(part);
    return static_cast<std::uint32_t>(m_mesh.positions.size() - 1);
  }
  void triangle(std::uint32_t a, std::uint32_t b, std::uint32_t c, int part) {
    m_mesh.triangles.insert(m_mesh.triangles.end(), {a, b, c});
    m_mesh.faces.push_back(part);
  }
  // The filled side lies to the left of the contour, so what is outside lies to the right. Corners are sharp where the
  // contour turns more than a curve does from piece to piece.
  void sides(Line const& line, SoTextLine::Place const& place, std::vector<SbVec2f> const& contour, float depth,
             int part) {
    size_t const count = contour.size();
    float const sharp = std::cos(SHARP_CORNER);
    std::vector<SbVec3f> points, outward;
    for (size_t i = 0; i < count; ++i) points.push_back(at(line, place, contour[i], 0));
    for (size_t i = 0; i < count; ++i) {
      SbVec3f const along = points[(i + 1) % count] - points[i];
      outward.push_back(SbVec3f(along[1], -along[0], 0).normalized());
    }
    SbVec3f const back(0, 0, -depth);
    float along = 0;
    for (size_t i = 0; i < count; ++i) {
      SbVec3f const &from = points[i], &to = points[(i + 1) % count], &own = outward[i];
      auto const normalWith = [&](SbVec3f const& other) { return own.dot(other) > sharp ? (own + other).normalized() : own; };
      SbVec3f const first = normalWith(outward[(i + count - 1) % count]), second = normalWith(outward[(i + 1) % count]);
      float const end = along + (to - from).length();
      std::uint32_t const a = vertex(from, first, part, along), b = vertex(from + back, first, part, along),
                          c = vertex(to + back, second, part, end), d = vertex(to, second, part, end);
      triangle(a, b, c, part);
      triangle(a, c, d, part);
      along = end;
    }
  }

  static constexpr float SHARP_CORNER = 0.7f; // radians
  SoShape const& m_shape;
  SoMesh& m_mesh;
  SoFontElement m_font;
  SoTextureCoordinateElement m_texCoords;
  std::vector<Line> m_lines;
  std::vector<float> m_along; // for each vertex, how far along its outline it stands; -1 on faces
  bool m_perPart, m_textured;
  int m_steps;
};

std::uint64_t textKey(std::uint64_t key, SoState const& state) {
  return SoMixKey(SoMixKey(key, state.get<SoFontElement>().id), static_cast<std::uint64_t>(curveSteps(state)));
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

std::uint64_t SoText2::getMeshKey(SoState const& state) const {
  std::uint64_t key = textKey(SoShape::getMeshKey(state), state);
  auto const matrix = SoScreenText::getPixelMatrix(state);
  for (int i = 0; i < 16 && matrix; ++i) key = SoMixKey(key, std::bit_cast<std::uint32_t>(matrix->getValue()[i]));
  return key;
}

// Who draws, draws pixels; this serves those who want outlines.
void SoText2::buildMesh(SoState const& state, SoMesh& mesh) const {
  auto const matrix = SoScreenText::getPixelMatrix(state);
  if (!matrix) return;
  SoMesh pixels;
  TextBuilder builder(*this, state, pixels);
  builder.layOut(string, spacing.isIgnored() ? 1 : spacing.getValue(), justification.getValue(), nullptr);
  builder.faces(0, true, 0);
  builder.finish();
  for (SbVec3f& point : pixels.positions) point = matrix->multVecMatrix(point);
  SbVec3f const normal = matrix->multDirMatrix(SbVec3f(0, 0, 1)).normalized();
  for (SbVec3f& n : pixels.normals) n = normal;
  mesh = std::move(pixels);
}
