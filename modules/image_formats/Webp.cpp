#include <webp/decode.h>

#include <algorithm>

#include "kestrava/base/SbImageCodecs.h"
#include "modules/image_formats/Codecs.h"

bool takesWebp(ImageBytes const& file) {
  return file.size() >= 12 && std::equal(file.begin(), file.begin() + 4, "RIFF") &&
         std::equal(file.begin() + 8, file.begin() + 12, "WEBP");
}

std::string decodeWebp(ImageBytes const& file, SbImage& image) {
  WebPBitstreamFeatures features;
  VP8StatusCode const status = WebPGetFeatures(file.data(), file.size(), &features);
  if (status == VP8_STATUS_NOT_ENOUGH_DATA) return "the file is cut short";
  if (status != VP8_STATUS_OK) return "the WebP data is damaged";
  if (features.has_animation) return "animated WebP images can not be read";
  int const components = features.has_alpha ? 4 : 3;
  // The largest image of the format takes less than a gigabyte, and one colour everywhere a few bytes.
  constexpr std::size_t RATIO = std::size_t(1) << 24;
  std::string const reason =
      SbCheckImageSize(features.width, features.height, components, file.size(), RATIO);
  if (!reason.empty()) return reason;
  std::size_t const rowBytes = static_cast<std::size_t>(features.width) * components;
  ImageBytes pixels(rowBytes * features.height);
  auto const decode = features.has_alpha ? WebPDecodeRGBAInto : WebPDecodeRGBInto;
  if (!decode(file.data(), file.size(), pixels.data(), pixels.size(), static_cast<int>(rowBytes)))
    return "the WebP data is damaged or cut short";
  flipRows(pixels, rowBytes);
  image = SbImage(SbVec2i32(features.width, features.height), components, std::move(pixels));
  return {};
}
