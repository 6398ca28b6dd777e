#pragma once

#include <cstdint>
#include <vector>

#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"
#include "kestrava/render/SoDrawList.h"

/// Draws the texts of a list that stand in the plane of the screen. Their characters lie in one texture and
/// their places in one buffer, both made anew when the list has changed; the view is applied on the GPU.
class SoGLScreenText {
 public:
  /// Draws the texts of one layer, TRANSPARENT ones with the OPAQUE, over what is there: by the depth of the
  /// point where each stands. Leaves blending off and writing of depth on.
  void draw(SoDrawList const& list, SoDrawLook::Layer layer, SbViewVolume const& volume,
            SbViewportRegion const& region);
  /// As of the latest draw(): whether there are texts of the layer ANNOTATION.
  bool hasAnnotations() const;
  void release();
  /// For a context that is gone.
  void forget();

 private:
  /// Characters that are drawn together.
  struct Run {
    bool onTop;
    int surroundings;
    std::uint32_t first, count;
  };
  void prepare(SoDrawList const& list);
  void makeProgram();

  std::uint64_t m_preparedVersion = 0;
  std::vector<Run> m_runs;
  unsigned m_program = 0, m_vertexArray = 0, m_buffer = 0, m_texture = 0;
  bool m_failed = false;
};
