#include "kestrava/render/SoGLBackground.h"

#include <epoxy/gl.h>

#include "kestrava/base/SbVec2f.h"
#include "kestrava/base/SbVec4f.h"
#include "kestrava/nodes/SoImageBackground.h"
#include "kestrava/render/SoGLProgram.h"
#include "kestrava/render/SoGLTextures.h"

namespace {

char const* const VERTEX = R"(#version 330 core
uniform vec4 place;  // lower left and upper right corner, 0 to 1
uniform vec4 part;   // of the image
uniform vec3 bottom, top;
out vec3 color;
out vec2 texCoord;
void main() {
  vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
  vec2 p = mix(place.xy, place.zw, corner);
  gl_Position = vec4(p * 2.0 - 1.0, 0.0, 1.0);
  color = mix(bottom, top, p.y);
  texCoord = mix(part.xy, part.zw, corner);
}
)";

char const* const FRAGMENT = R"(#version 330 core
uniform sampler2D image;
uniform bool hasImage;
in vec3 color;
in vec2 texCoord;
out vec4 result;
void main() { result = hasImage ? texture(image, texCoord) : vec4(color, 1.0); }
)";

struct Rectangles {
  SbVec4f place{0.f, 0.f, 1.f, 1.f}, part{0.f, 0.f, 1.f, 1.f};
};

Rectangles rectanglesOf(SoDrawBackground const& background, SbVec2s size) {
  Rectangles r;
  if (background.kind != SoDrawBackground::IMAGE) return r;
  // The image's size as a part of the viewport.
  SbVec2f const scale(static_cast<float>(background.image.getWidth()) / size[0],
                      static_cast<float>(background.image.getHeight()) / size[1]);
  auto at = [&](float x, float y) {
    r.place = SbVec4f(x * (1 - scale[0]), y * (1 - scale[1]), x + (1 - x) * scale[0], y + (1 - y) * scale[1]);
  };
  switch (background.style) {
    case SoImageBackground::CENTER: at(0.5f, 0.5f); break;
    case SoImageBackground::LOWER_LEFT: at(0, 0); break;
    case SoImageBackground::UPPER_LEFT: at(0, 1); break;
    case SoImageBackground::UPPER_RIGHT: at(1, 1); break;
    case SoImageBackground::LOWER_RIGHT: at(1, 0); break;
    case SoImageBackground::TILE: r.part = SbVec4f(0.f, 0.f, 1 / scale[0], 1 / scale[1]); break;
    case SoImageBackground::CROP: {
      // As large as needed to fill the viewport in both directions.
      float const factor = 1 / std::min(scale[0], scale[1]);
      SbVec2f const seen(1 / (scale[0] * factor), 1 / (scale[1] * factor));
      r.part = SbVec4f((1 - seen[0]) / 2, (1 - seen[1]) / 2, (1 + seen[0]) / 2, (1 + seen[1]) / 2);
      break;
    }
    default: break;
  }
  return r;
}

}  // namespace

void SoGLBackground::draw(SoDrawBackground const& background, SbVec2s size, SoGLTextures& textures) {
  if (background.kind == SoDrawBackground::NONE) return;
  if (!m_vertexArray) {
    m_program = SoGLProgram::build("background", VERTEX, FRAGMENT);
    glGenVertexArrays(1, &m_vertexArray);
  }
  if (!m_program) return;
  bool const hasImage = background.kind == SoDrawBackground::IMAGE;
  if (hasImage) textures.bind(SoGLProgram::IMAGE_UNIT, background.image, {true, true, true});
  glUseProgram(m_program);
  auto uniform = [this](char const* name) { return glGetUniformLocation(m_program, name); };
  Rectangles const r = rectanglesOf(background, size);
  glUniform4fv(uniform("place"), 1, r.place.getValue());
  glUniform4fv(uniform("part"), 1, r.part.getValue());
  glUniform3fv(uniform("bottom"), 1, background.bottom.getValue());
  glUniform3fv(uniform("top"), 1, background.top.getValue());
  glUniform1i(uniform("hasImage"), hasImage);
  glUniform1i(uniform("image"), SoGLProgram::IMAGE_UNIT);
  glBindVertexArray(m_vertexArray);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  if (hasImage && background.image.hasAlpha()) glEnable(GL_BLEND);
  glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
  glDisable(GL_BLEND);
}

void SoGLBackground::release() {
  glDeleteProgram(m_program);
  glDeleteVertexArrays(1, &m_vertexArray);
  forget();
}
