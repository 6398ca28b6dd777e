#pragma once

#include <cstdint>

#include "kestrava/base/SbColor.h"
#include "kestrava/base/SbVec4f.h"

/// A colour as red, green, blue and opacity, 0 to 1 each; opaque black by default.
struct SbColorRGBA : SbVec4f {
  constexpr SbColorRGBA() : SbVec4f(0.f, 0.f, 0.f, 1.f) {}
  constexpr SbColorRGBA(float red, float green, float blue, float alpha = 1)
      : SbVec4f(red, green, blue, alpha) {}
  constexpr SbColorRGBA(SbVec4f const& rgba) : SbVec4f(rgba) {}
  constexpr SbColorRGBA(SbColor const& color, float alpha) : SbVec4f(color[0], color[1], color[2], alpha) {}

  constexpr SbColor getColor() const { return SbColor(v[0], v[1], v[2]); }
  /// 0xRRGGBBAA, rounded.
  std::uint32_t getPackedValue() const { return getColor().getPackedValue(1 - v[3]); }
  void setPackedValue(std::uint32_t packed);
};
