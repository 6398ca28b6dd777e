#pragma once

#include <array>
#include <memory>
#include <unordered_map>

#include "kestrava/render/SoDrawContents.h"

/// The images that a renderer has on the GPU, with mipmaps, one for all users of the same pixels.
class SoGLTextures {
 public:
  using Repeat = std::array<bool, 3>;  // in s, t, r
  /// Binds an image to a unit, uploading it first if need be; one with a depth as a texture of three dimensions.
  /// One that is too large is shown coarser, which is posted once as a warning.
  void bind(int unit, SbImage const& image, Repeat const& repeat);
  /// Between these two every image that bind() or keep() is not called for is given up.
  void beginSweep();
  void keep(SbImage const& image);
  void endSweep();
  void release();
  /// The context is gone and the names with it.
  void forget();

 private:
  struct Entry {
    unsigned name = 0;
    bool used = true;
  };
  unsigned nameOf(SbImage const& image);

  std::unordered_map<std::shared_ptr<SbImage::Bytes const>, Entry> m_entries;
  unsigned m_samplers[8] = {};
};
