#include "extender_base/VntImages.h"

#include <algorithm>

namespace {

struct Pixel {
  unsigned char r, g, b, a;
};

Pixel pixelAt(unsigned char const* at, int components) {
  switch (components) {
    case 1:
      return {at[0], at[0], at[0], 255};
    case 2:
      return {at[0], at[0], at[0], at[1]};
    case 3:
      return {at[0], at[1], at[2], 255};
    default:
      return {at[0], at[1], at[2], at[3]};
  }
}

unsigned char* put(unsigned char* at, int components, Pixel const& pixel) {
  if (components >= 3) {
    *at++ = pixel.r;
    *at++ = pixel.g;
    *at++ = pixel.b;
  } else {
    *at++ = static_cast<unsigned char>(qGray(pixel.r, pixel.g, pixel.b));
  }
  if (components == 2 || components == 4) *at++ = pixel.a;
  return at;
}

} // namespace

QImage toQImage(SbImage const& image, int slice, int longest) {
  if (image.isEmpty()) return {};
  int const width = std::min(image.getWidth(), longest), height = std::min(image.getHeight(), longest);
  slice = std::clamp(slice, 0, std::max(image.getDepth(), 1) - 1);
  QImage result(width, height, image.hasAlpha() ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
  if (result.isNull()) return {};
  auto const spread = [](int at, int count, int of) {
    return static_cast<int>((static_cast<qint64>(at) * 2 + 1) * of / (2 * static_cast<qint64>(count)));
  };
  for (int y = 0; y < height; ++y) {
    unsigned char* out = result.scanLine(height - 1 - y);
    int const row = spread(y, height, image.getHeight());
    for (int x = 0; x < width; ++x) {
      out = put(
          out, 4,
          pixelAt(image.getPixel(spread(x, width, image.getWidth()), row, slice), image.getNumComponents()));
    }
  }
  return result;
}

SbImage toSbImage(QImage const& image) {
  if (image.isNull()) return {};
  int const components = image.hasAlphaChannel() ? 4 : image.isGrayscale() ? 1 : 3;
  SbVec3i32 const size(image.width(), image.height(), 0);
  std::size_t const count = SbImage::countBytes(size, components);
  if (count == 0) return {};
  QImage const pixels = image.convertToFormat(QImage::Format_RGBA8888);
  SbImage::Bytes bytes(count);
  unsigned char* out = bytes.data();
  for (int y = pixels.height() - 1; y >= 0; --y) {
    unsigned char const* in = pixels.constScanLine(y);
    for (int x = 0; x < pixels.width(); ++x, in += 4) out = put(out, components, pixelAt(in, 4));
  }
  return SbImage(size, components, std::move(bytes));
}

SbImage convertImage(SbImage const& image, int components) {
  std::size_t const count = SbImage::countBytes(image.getSize(), components);
  if (image.isEmpty() || count == 0) return {};
  SbImage::Bytes bytes(count);
  unsigned char* out = bytes.data();
  unsigned char const* const last = image.getBytes() + image.getNumBytes();
  for (unsigned char const* in = image.getBytes(); in < last; in += image.getNumComponents())
    out = put(out, components, pixelAt(in, image.getNumComponents()));
  return SbImage(image.getSize(), components, std::move(bytes));
}

SbImage scaleImage(SbImage const& image, int width, int height) {
  int const components = image.getNumComponents();
  SbVec3i32 const size(width, height, image.getDepth());
  std::size_t const count = SbImage::countBytes(size, components);
  if (image.isEmpty() || count == 0) return {};
  SbImage::Bytes bytes;
  bytes.reserve(count);
  for (int slice = 0; slice < std::max(image.getDepth(), 1); ++slice) {
    QImage const scaled = toQImage(image, slice, std::max(image.getWidth(), image.getHeight()))
                              .scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                              .convertToFormat(QImage::Format_RGBA8888);
    if (scaled.isNull()) return {};
    std::size_t const from = bytes.size();
    bytes.resize(from + count / static_cast<std::size_t>(std::max(image.getDepth(), 1)));
    unsigned char* out = bytes.data() + from;
    for (int y = height - 1; y >= 0; --y) {
      unsigned char const* in = scaled.constScanLine(y);
      for (int x = 0; x < width; ++x, in += 4) out = put(out, components, pixelAt(in, 4));
    }
  }
  return SbImage(size, components, std::move(bytes));
}
