#include "kestrava/base/SbColor.h"

#include <algorithm>

#include "kestrava/base/SbColorRGBA.h"

namespace {

std::uint32_t toByte(float value) {
  // The order of the comparison sends NaN to 0.
  return value > 0 ? static_cast<std::uint32_t>(std::min(value, 1.f) * 255 + 0.5f) : 0;
}

float fromByte(std::uint32_t packed, int shift) { return static_cast<float>(packed >> shift & 0xff) / 255; }

} // namespace

std::uint32_t SbColor::getPackedValue(float transparency) const {
  return toByte(v[0]) << 24 | toByte(v[1]) << 16 | toByte(v[2]) << 8 | toByte(1 - transparency);
}

float SbColor::setPackedValue(std::uint32_t packed) {
  *this = SbColor(fromByte(packed, 24), fromByte(packed, 16), fromByte(packed, 8));
  return 1 - fromByte(packed, 0);
}

void SbColorRGBA::setPackedValue(std::uint32_t packed) {
  *this = SbColorRGBA(fromByte(packed, 24), fromByte(packed, 16), fromByte(packed, 8), fromByte(packed, 0));
}
