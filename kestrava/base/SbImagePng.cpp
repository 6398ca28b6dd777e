#include <png.h>

#include "kestrava/base/SbImageCodecs.h"

namespace {

// Frees what libpng holds, however the function is left.
struct PngImage : png_image {
  PngImage() : png_image() { version = PNG_IMAGE_VERSION; }
  ~PngImage() { png_image_free(this); }
  PngImage(PngImage const&) = delete;
  PngImage& operator=(PngImage const&) = delete;
};

constexpr png_uint_32 FORMATS[] = {PNG_FORMAT_GRAY, PNG_FORMAT_GA, PNG_FORMAT_RGB, PNG_FORMAT_RGBA};

} // namespace

std::string SbDecodePng(SbImageBytes const& file, SbImage& image) {
  PngImage png;
  if (!png_image_begin_read_from_memory(&png, file.data(), file.size())) return png.message;
  int const components =
      (png.format & PNG_FORMAT_FLAG_COLOR ? 3 : 1) + (png.format & PNG_FORMAT_FLAG_ALPHA ? 1 : 0);
  // Deflate reaches 1032 : 1, and a byte of the packed rows can be 8 pixels of 4 bytes.
  std::string reason =
      SbCheckImageSize(png.width, png.height, components, file.size(), std::size_t(1032) * 32);
  if (!reason.empty()) return reason;
  png.format = FORMATS[components - 1];
  png.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
  SbImageBytes pixels(PNG_IMAGE_SIZE(png));
  auto const stride = static_cast<png_int_32>(PNG_IMAGE_ROW_STRIDE(png));
  if (!png_image_finish_read(&png, nullptr, pixels.data(), -stride, nullptr)) return png.message;
  image = SbImage(SbVec2i32(png.width, png.height), components, std::move(pixels));
  return {};
}

std::string SbEncodePng(SbImage const& image, SbImageBytes& file) {
  PngImage png;
  png.width = static_cast<png_uint_32>(image.getWidth());
  png.height = static_cast<png_uint_32>(image.getHeight());
  png.format = FORMATS[image.getNumComponents() - 1];
  auto const stride = -static_cast<png_int_32>(PNG_IMAGE_ROW_STRIDE(png));
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png);
  file.resize(size);
  if (!png_image_write_to_memory(&png, file.data(), &size, 0, image.getBytes(), stride, nullptr))
    return png.message;
  file.resize(size);
  return {};
}
