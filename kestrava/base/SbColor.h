#pragma once

#include <cstdint>

#include "kestrava/base/SbVec3f.h"

/// A colour as red, green and blue, 0 to 1 each; values outside are kept.
struct SbColor : SbVec3f {
  constexpr SbColor() = default;
  constexpr SbColor(float red, float green, float blue) : SbVec3f(red, green, blue) {}
  constexpr SbColor(SbVec3f const& rgb) : SbVec3f(rgb) {}

  /// 0xRRGGBBAA, rounded; AA is 0xff where the transparency is 0.
  std::uint32_t getPackedValue(float transparency = 0) const;
  /// Takes 0xRRGGBBAA and answers the transparency, 0 to 1.
  float setPackedValue(std::uint32_t packed);
};
