#include "kestrava/render/SoGLState.h"

#include <epoxy/gl.h>

namespace {

constexpr unsigned SWITCHES[] = {
    GL_DEPTH_TEST,     GL_BLEND,          GL_CULL_FACE,      GL_SCISSOR_TEST,   GL_STENCIL_TEST,
    GL_PROGRAM_POINT_SIZE, GL_MULTISAMPLE, GL_FRAMEBUFFER_SRGB, GL_DEPTH_CLAMP,
    GL_CLIP_DISTANCE0, GL_CLIP_DISTANCE1, GL_CLIP_DISTANCE2, GL_CLIP_DISTANCE3, GL_CLIP_DISTANCE4, GL_CLIP_DISTANCE5,
    GL_CLIP_DISTANCE6, GL_CLIP_DISTANCE7, GL_POLYGON_OFFSET_FILL, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_COVERAGE,
    GL_COLOR_LOGIC_OP, GL_PRIMITIVE_RESTART, GL_RASTERIZER_DISCARD};

/// What images and tables are uploaded with.
constexpr unsigned UNPACKING[] = {GL_UNPACK_ALIGNMENT,   GL_UNPACK_ROW_LENGTH,  GL_UNPACK_IMAGE_HEIGHT,
                                  GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_ROWS,   GL_UNPACK_SKIP_IMAGES,
                                  GL_UNPACK_SWAP_BYTES,  GL_UNPACK_LSB_FIRST};

unsigned asName(int value) { return static_cast<unsigned>(value); }

}  // namespace

SoGLState::SoGLState(int numUnits) : m_units(static_cast<size_t>(numUnits)) {
  static_assert(std::size(SWITCHES) == std::tuple_size_v<decltype(m_switches)>);
  static_assert(std::size(UNPACKING) == std::tuple_size_v<decltype(m_unpacking)>);
  for (size_t i = 0; i < m_switches.size(); ++i) m_switches[i] = {SWITCHES[i], glIsEnabled(SWITCHES[i]) != 0};
  glGetIntegerv(GL_ACTIVE_TEXTURE, &m_activeTexture);
  for (size_t i = 0; i < m_units.size(); ++i) {
    glActiveTexture(GL_TEXTURE0 + static_cast<unsigned>(i));
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &m_units[i].texture);
    glGetIntegerv(GL_TEXTURE_BINDING_3D, &m_units[i].solidTexture);
    glGetIntegerv(GL_TEXTURE_BINDING_BUFFER, &m_units[i].bufferTexture);
    glGetIntegerv(GL_SAMPLER_BINDING, &m_units[i].sampler);
  }
  for (size_t i = 0; i < m_blocks.size(); ++i) {
    auto const index = static_cast<unsigned>(i);
    glGetIntegeri_v(GL_UNIFORM_BUFFER_BINDING, index, &m_blocks[i].buffer);
    glGetIntegeri_v(GL_UNIFORM_BUFFER_START, index, &m_blocks[i].start);
    glGetIntegeri_v(GL_UNIFORM_BUFFER_SIZE, index, &m_blocks[i].size);
  }
  glGetIntegerv(GL_CURRENT_PROGRAM, &m_program);
  glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &m_vertexArray);
  glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &m_arrayBuffer);
  glGetIntegerv(GL_UNIFORM_BUFFER_BINDING, &m_uniformBuffer);
  glGetIntegerv(GL_TEXTURE_BUFFER, &m_textureBuffer);
  for (size_t i = 0; i < m_unpacking.size(); ++i) glGetIntegerv(UNPACKING[i], &m_unpacking[i]);
  glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &m_unpackBuffer);
  glGetIntegerv(GL_VIEWPORT, m_viewport);
  glGetIntegerv(GL_SCISSOR_BOX, m_scissor);
  glGetIntegerv(GL_POLYGON_MODE, m_polygonMode);
  static constexpr unsigned blends[] = {GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA};
  for (int i = 0; i < 4; ++i) glGetIntegerv(blends[i], &m_blend[i]);
  glGetIntegerv(GL_BLEND_EQUATION_RGB, &m_blendEquation[0]);
  glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &m_blendEquation[1]);
  glGetIntegerv(GL_DEPTH_FUNC, &m_depthFunction);
  glGetIntegerv(GL_CULL_FACE_MODE, &m_cullFace);
  glGetIntegerv(GL_FRONT_FACE, &m_frontFace);
  glGetFloatv(GL_COLOR_CLEAR_VALUE, m_clearColor);
  glGetFloatv(GL_LINE_WIDTH, &m_lineWidth);
  glGetBooleanv(GL_DEPTH_WRITEMASK, &m_depthMask);
  glGetBooleanv(GL_COLOR_WRITEMASK, m_colorMask);
}

SoGLState::~SoGLState() {
  for (Switch const& s : m_switches) s.on ? glEnable(s.name) : glDisable(s.name);
  for (size_t i = 0; i < m_units.size(); ++i) {
    auto const unit = static_cast<unsigned>(i);
    glActiveTexture(GL_TEXTURE0 + unit);
    glBindTexture(GL_TEXTURE_2D, asName(m_units[i].texture));
    glBindTexture(GL_TEXTURE_3D, asName(m_units[i].solidTexture));
    glBindTexture(GL_TEXTURE_BUFFER, asName(m_units[i].bufferTexture));
    glBindSampler(unit, asName(m_units[i].sampler));
  }
  glActiveTexture(asName(m_activeTexture));
  for (size_t i = 0; i < m_blocks.size(); ++i) {
    auto const index = static_cast<unsigned>(i);
    Block const& block = m_blocks[i];
    if (block.buffer && block.size > 0) {
      glBindBufferRange(GL_UNIFORM_BUFFER, index, asName(block.buffer), block.start, block.size);
    } else {
      glBindBufferBase(GL_UNIFORM_BUFFER, index, asName(block.buffer));
    }
  }
  glUseProgram(asName(m_program));
  glBindVertexArray(asName(m_vertexArray));
  glBindBuffer(GL_ARRAY_BUFFER, asName(m_arrayBuffer));
  glBindBuffer(GL_UNIFORM_BUFFER, asName(m_uniformBuffer));
  glBindBuffer(GL_TEXTURE_BUFFER, asName(m_textureBuffer));
  for (size_t i = 0; i < m_unpacking.size(); ++i) glPixelStorei(UNPACKING[i], m_unpacking[i]);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, asName(m_unpackBuffer));
  glViewport(m_viewport[0], m_viewport[1], m_viewport[2], m_viewport[3]);
  glScissor(m_scissor[0], m_scissor[1], m_scissor[2], m_scissor[3]);
  glPolygonMode(GL_FRONT_AND_BACK, asName(m_polygonMode[0]));
  glBlendFuncSeparate(asName(m_blend[0]), asName(m_blend[1]), asName(m_blend[2]), asName(m_blend[3]));
  glBlendEquationSeparate(asName(m_blendEquation[0]), asName(m_blendEquation[1]));
  glDepthFunc(asName(m_depthFunction));
  glCullFace(asName(m_cullFace));
  glFrontFace(asName(m_frontFace));
  glClearColor(m_clearColor[0], m_clearColor[1], m_clearColor[2], m_clearColor[3]);
  glLineWidth(m_lineWidth);
  glDepthMask(m_depthMask);
  glColorMask(m_colorMask[0], m_colorMask[1], m_colorMask[2], m_colorMask[3]);
}

void SoGLState::setPlain() const {
  for (unsigned name : {GL_STENCIL_TEST, GL_FRAMEBUFFER_SRGB, GL_DEPTH_CLAMP, GL_BLEND, GL_CULL_FACE,
                        GL_POLYGON_OFFSET_FILL, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_COVERAGE, GL_COLOR_LOGIC_OP,
                        GL_PRIMITIVE_RESTART, GL_RASTERIZER_DISCARD}) {
    glDisable(name);
  }
  for (unsigned i = 0; i < 8; ++i) glDisable(GL_CLIP_DISTANCE0 + i);
  for (size_t i = 1; i < m_unpacking.size(); ++i) glPixelStorei(UNPACKING[i], 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}
