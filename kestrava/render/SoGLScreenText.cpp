#include "kestrava/render/SoGLScreenText.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstddef>
#include <unordered_map>

#include "kestrava/base/SoError.h"
#include "kestrava/render/SoGLProgram.h"

namespace {

char const* const VERTEX = R"(#version 330 core
layout(location = 0) in vec3 place;
layout(location = 1) in vec4 rectangle;  // in pixels from the place: lower left corner, size
layout(location = 2) in vec2 texel;
layout(location = 3) in vec4 color;
uniform mat4 viewProjection;
uniform vec2 viewport;
uniform vec4 planes[6];
uniform int numPlanes;
out vec2 at;
flat out vec4 textColor;
void main() {
  vec4 clip = viewProjection * vec4(place, 1.0);
  bool hidden = clip.w <= 0.0;
  for (int i = 0; i < numPlanes; ++i) hidden = hidden || dot(planes[i].xyz, place) < planes[i].w;
  vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
  vec3 device = clip.xyz / clip.w;
  vec2 pixel = floor((device.xy * 0.5 + 0.5) * viewport + 0.5) + rectangle.xy + corner * rectangle.zw;
  gl_Position = hidden ? vec4(2.0, 2.0, 2.0, 1.0) : vec4(pixel / viewport * 2.0 - 1.0, device.z, 1.0);
  at = texel + corner * rectangle.zw;
  textColor = color;
}
)";

// Pixels and texels coincide, so nothing is to be filtered.
char const* const FRAGMENT = R"(#version 330 core
uniform sampler2D coverage;
uniform float least;
in vec2 at;
flat in vec4 textColor;
out vec4 result;
void main() {
  float covered = texelFetch(coverage, ivec2(at), 0).r;
  if (covered <= least) discard;
  result = vec4(textColor.rgb, textColor.a * covered);
}
)";

/// A character at its place.
struct Instance {
  float place[3];
  float rectangle[4];
  float texel[2];
  float color[4];
};

/// Packs the characters of a list row by row, the highest first.
class Atlas {
 public:
  explicit Atlas(SoDrawList const& list) {
    for (SoScreenText const& text : list.getScreenTexts()) {
      for (auto const& place : text.bitmap->glyphs) {
        if (place.glyph->width > 0) m_places.try_emplace(place.glyph.get());
      }
    }
    std::vector<SoGlyphBitmap const*> glyphs;
    for (auto const& [glyph, place] : m_places) {
      glyphs.push_back(glyph);
      m_width = std::max(m_width, glyph->width);
    }
    std::sort(glyphs.begin(), glyphs.end(),
              [](auto const* a, auto const* b) { return a->height > b->height; });
    int x = 0, y = 0, rowHeight = 0;
    for (SoGlyphBitmap const* glyph : glyphs) {
      if (x + glyph->width > m_width) x = 0, y += rowHeight, rowHeight = 0;
      m_places[glyph] = {x, y};
      x += glyph->width;
      rowHeight = std::max(rowHeight, glyph->height);
    }
    m_height = y + rowHeight;
  }
  int getWidth() const { return m_width; }
  int getHeight() const { return m_height; }
  std::pair<int, int> find(SoGlyphBitmap const* glyph) const { return m_places.at(glyph); }
  std::vector<unsigned char> draw() const {
    std::vector<unsigned char> pixels(static_cast<size_t>(m_width) * static_cast<size_t>(m_height));
    for (auto const& [glyph, place] : m_places) {
      for (int row = 0; row < glyph->height; ++row) {
        std::copy_n(
            &glyph->coverage[static_cast<size_t>(row) * static_cast<size_t>(glyph->width)], glyph->width,
            &pixels[static_cast<size_t>(place.second + row) * static_cast<size_t>(m_width) +
                    static_cast<size_t>(place.first)]);
      }
    }
    return pixels;
  }

 private:
  std::unordered_map<SoGlyphBitmap const*, std::pair<int, int>> m_places;
  int m_width = 1024, m_height = 0;  // wider where a single character is
};

bool isOnTop(SoDrawList const& list, SoDrawList::Item const& item) {
  return list.getLooks()[static_cast<size_t>(item.look)].layer == SoDrawLook::ANNOTATION;
}

} // namespace

void SoGLScreenText::makeProgram() {
  m_program = SoGLProgram::build("text", VERTEX, FRAGMENT);
  m_failed = m_program == 0;
  glGenVertexArrays(1, &m_vertexArray);
  glGenBuffers(1, &m_buffer);
  glGenTextures(1, &m_texture);
}

void SoGLScreenText::prepare(SoDrawList const& list) {
  m_preparedVersion = list.getVersion();
  m_runs.clear();
  Atlas const atlas(list);
  int largest = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
  if (atlas.getHeight() == 0) return;
  if (atlas.getHeight() > largest || atlas.getWidth() > largest) {
    SoDebugError::post("SoText2", "the characters of all texts take %d x %d pixels; %d in each direction is the most",
                       atlas.getWidth(), atlas.getHeight(), largest);
    return;
  }
  std::vector<Instance> instances;
  for (SoScreenText const& text : list.getScreenTexts()) {
    SoDrawList::Item const& item = list.getItems()[static_cast<size_t>(text.item)];
    bool const onTop = isOnTop(list, item);
    int const surroundings = list.getLooks()[static_cast<size_t>(item.look)].surroundings;
    SbVec3f const& place = text.place;
    if (m_runs.empty() || m_runs.back().onTop != onTop || m_runs.back().surroundings != surroundings) {
      m_runs.push_back({onTop, surroundings, static_cast<std::uint32_t>(instances.size()), 0});
    }
    for (auto const& [glyph, x, y] : text.bitmap->glyphs) {
      if (glyph->width == 0) continue;
      auto const [column, row] = atlas.find(glyph.get());
      Instance instance{{place[0], place[1], place[2]},
                        {static_cast<float>(x + glyph->left), static_cast<float>(y + glyph->bottom),
                         static_cast<float>(glyph->width), static_cast<float>(glyph->height)},
                        {static_cast<float>(column), static_cast<float>(row)},
                        {text.color[0], text.color[1], text.color[2], text.color[3]}};
      instances.push_back(instance);
      ++m_runs.back().count;
    }
  }
  glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(instances.size() * sizeof(Instance)),
               instances.data(), GL_STATIC_DRAW);
  glActiveTexture(GL_TEXTURE0 + SoGLProgram::IMAGE_UNIT);
  glBindTexture(GL_TEXTURE_2D, m_texture);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, atlas.getWidth(), atlas.getHeight(), 0, GL_RED, GL_UNSIGNED_BYTE,
               atlas.draw().data());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
}

void SoGLScreenText::draw(SoDrawList const& list, SoDrawLook::Layer layer, SbViewVolume const& volume,
                          SbViewportRegion const& region) {
  if (list.getScreenTexts().empty()) m_runs.clear();
  if (list.getScreenTexts().empty() || m_failed) return;
  if (!m_program) makeProgram();
  if (m_failed) return;
  if (m_preparedVersion != list.getVersion()) prepare(list);
  bool const onTop = layer == SoDrawLook::ANNOTATION;
  if (onTop ? !hasAnnotations()
            : std::all_of(m_runs.begin(), m_runs.end(), [](Run const& run) { return run.onTop; })) {
    return;
  }

  glUseProgram(m_program);
  auto const uniform = [this](char const* name) { return glGetUniformLocation(m_program, name); };
  SbMatrix const matrix = volume.getMatrix();
  SbVec2s const size = region.getViewportSizePixels();
  glUniformMatrix4fv(uniform("viewProjection"), 1, GL_FALSE, matrix.getValue());
  glUniform2f(uniform("viewport"), size[0], size[1]);
  glUniform1i(uniform("coverage"), SoGLProgram::IMAGE_UNIT);
  glActiveTexture(GL_TEXTURE0 + SoGLProgram::IMAGE_UNIT);
  glBindTexture(GL_TEXTURE_2D, m_texture);
  glBindSampler(SoGLProgram::IMAGE_UNIT, 0);
  glBindVertexArray(m_vertexArray);
  glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
  glDisable(GL_CULL_FACE);

  constexpr std::pair<int, size_t> ATTRIBUTES[] = {{3, offsetof(Instance, place)},
                                                   {4, offsetof(Instance, rectangle)},
                                                   {2, offsetof(Instance, texel)},
                                                   {4, offsetof(Instance, color)}};
  auto const drawRuns = [&] {
    for (Run const& run : m_runs) {
      if (run.onTop != onTop || run.count == 0) continue;
      auto const& planes = list.getSurroundings()[static_cast<size_t>(run.surroundings)].clipPlanes;
      int const numPlanes = static_cast<int>(std::min<size_t>(planes.size(), SoGLProgram::MAX_CLIP_PLANES));
      float values[SoGLProgram::MAX_CLIP_PLANES][4] = {};
      for (int i = 0; i < numPlanes; ++i) {
        SbPlane const& plane = planes[static_cast<size_t>(i)];
        for (int k = 0; k < 3; ++k) values[i][k] = plane.getNormal()[k];
        values[i][3] = plane.getDistanceFromOrigin();
      }
      glUniform1i(uniform("numPlanes"), numPlanes);
      glUniform4fv(uniform("planes"), SoGLProgram::MAX_CLIP_PLANES, values[0]);
      for (unsigned i = 0; i < std::size(ATTRIBUTES); ++i) {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(
            i, ATTRIBUTES[i].first, GL_FLOAT, GL_FALSE, sizeof(Instance),
            reinterpret_cast<void const*>(run.first * sizeof(Instance) + ATTRIBUTES[i].second));
        glVertexAttribDivisor(i, 1);
      }
      glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(run.count));
    }
  };
  // First the colours with their soft rims, then the depth of what is covered: a rim must not keep away what
  // is drawn behind it later.
  glEnable(GL_BLEND);
  glDepthMask(GL_FALSE);
  glUniform1f(uniform("least"), 0);
  drawRuns();
  glDisable(GL_BLEND);
  glDepthMask(GL_TRUE);
  glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
  glUniform1f(uniform("least"), 0.5f);
  drawRuns();
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

bool SoGLScreenText::hasAnnotations() const {
  return std::any_of(m_runs.begin(), m_runs.end(), [](Run const& run) { return run.onTop; });
}

void SoGLScreenText::release() {
  glDeleteProgram(m_program);
  glDeleteVertexArrays(1, &m_vertexArray);
  glDeleteBuffers(1, &m_buffer);
  glDeleteTextures(1, &m_texture);
  forget();
}

void SoGLScreenText::forget() {
  m_preparedVersion = 0;
  m_runs.clear();
  m_program = m_vertexArray = m_buffer = m_texture = 0;
  m_failed = false;
}
