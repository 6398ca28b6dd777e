#pragma once

#include "kestrava/base/SbVec2s.h"
#include "kestrava/render/SoDrawContents.h"

class SoGLTextures;

/// Fills the viewport with a gradient or an image.
class SoGLBackground {
 public:
  /// `size` of the viewport in pixels.
  void draw(SoDrawBackground const& background, SbVec2s size, SoGLTextures& textures);
  void release();
  /// For a context that is gone.
  void forget() { m_program = m_vertexArray = 0; }

 private:
  unsigned m_program = 0, m_vertexArray = 0;
};
