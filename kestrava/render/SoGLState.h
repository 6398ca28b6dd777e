#pragma once

#include <array>
#include <vector>

/// Remembers the OpenGL state that the renderer changes and puts it back at the end of its life, so that a
/// host that draws with the same context finds everything as it was.
class SoGLState {
 public:
  /// `numUnits`: texture units that are used.
  explicit SoGLState(int numUnits);
  ~SoGLState();
  /// Switches off whatever the host may have on that changes what is drawn or uploaded.
  void setPlain() const;
  SoGLState(SoGLState const&) = delete;
  SoGLState& operator=(SoGLState const&) = delete;

 private:
  struct Switch {
    unsigned name;
    bool on;
  };
  struct Unit {
    int texture, solidTexture, bufferTexture, sampler;
  };
  struct Block {
    int buffer, start, size;
  };
  std::array<Switch, 23> m_switches;
  std::array<int, 8> m_unpacking;
  std::vector<Unit> m_units;
  std::array<Block, 2> m_blocks;
  int m_program, m_vertexArray, m_arrayBuffer, m_uniformBuffer, m_textureBuffer, m_activeTexture, m_unpackBuffer;
  int m_viewport[4], m_scissor[4], m_polygonMode[2], m_blend[4], m_blendEquation[2];
  int m_depthFunction, m_cullFace, m_frontFace;
  float m_clearColor[4], m_lineWidth;
  unsigned char m_depthMask, m_colorMask[4];
};
