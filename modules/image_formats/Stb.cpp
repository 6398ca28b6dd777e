// The decoders that rest on stb_image, which is compiled into this source alone.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "kestrava/base/SbImageCodecs.h"
#include "modules/image_formats/Codecs.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_NO_STDIO
#define STBI_ONLY_TGA
#define STBI_ONLY_BMP
#define STBI_ONLY_PSD
#define STBI_ONLY_GIF
#define STBI_ONLY_HDR
#define STBI_ONLY_PNM
#include <stb_image.h>

namespace {

bool startsWith(ImageBytes const& file, std::string_view sign) {
  return file.size() >= sign.size() && std::memcmp(file.data(), sign.data(), sign.size()) == 0;
}

template <class T> using Pixels = std::unique_ptr<T, void (*)(void*)>;

/// stb_image takes what lies behind the end for zeros. Here it finds some, and that it took them tells that
/// the file is cut short.
class PaddedFile {
 public:
  explicit PaddedFile(ImageBytes const& file) : m_bytes(file) {
    m_bytes.resize(file.size() + PADDING);
    rewind();
  }
  stbi__context* context() { return &m_context; }
  void rewind() { stbi__start_mem(&m_context, m_bytes.data(), static_cast<int>(m_bytes.size())); }
  bool isReadBeyond() const { return m_context.img_buffer_end - m_context.img_buffer < PADDING; }

 private:
  static constexpr int PADDING = 64;
  ImageBytes m_bytes;
  stbi__context m_context;
};

std::string lastReason() {
  char const* const reason = stbi_failure_reason();
  return reason ? std::string("the data is damaged (") + reason + ")" : "the data is damaged";
}

void dropOpaqueAlpha(ImageBytes& pixels, int& components) {
  if (components != 4) return;
  for (std::size_t i = 3; i < pixels.size(); i += 4) {
    if (pixels[i] != 255) return;
  }
  for (std::size_t i = 0, to = 0; i < pixels.size(); i += 4, to += 3) {
    std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(i), 3,
                pixels.begin() + static_cast<std::ptrdiff_t>(to));
  }
  pixels.resize(pixels.size() / 4 * 3);
  components = 3;
}

/// `ratio`: bytes of the image that a byte of the file can stand for, at most.
std::string checkSize(PaddedFile& file, std::size_t fileBytes, std::size_t ratio) {
  int width = 0, height = 0, components = 0;
  if (!stbi__info_main(file.context(), &width, &height, &components)) return lastReason();
  file.rewind();
  return SbCheckImageSize(width, height, 4, fileBytes, ratio);
}

std::string decode(ImageBytes const& bytes, std::size_t ratio, SbImage& image) {
  if (bytes.size() >= (std::size_t(1) << 30)) return "the file is too large";
  PaddedFile file(bytes);
  std::string const reason = checkSize(file, bytes.size(), ratio);
  if (!reason.empty()) return reason;
  int width = 0, height = 0, components = 0;
  Pixels<unsigned char> const decoded(
      stbi__load_and_postprocess_8bit(file.context(), &width, &height, &components, 0), stbi_image_free);
  if (!decoded) return lastReason();
  if (file.isReadBeyond()) return "the file is cut short";
  std::size_t const rowBytes = static_cast<std::size_t>(width) * components;
  ImageBytes pixels(decoded.get(), decoded.get() + rowBytes * height);
  flipRows(pixels, rowBytes);
  dropOpaqueAlpha(pixels, components);
  image = SbImage(SbVec2i32(width, height), components, std::move(pixels));
  return {};
}

/// Light as a screen shows it: brighter than white comes ever nearer to white, dark parts stay as they are.
unsigned char toScreen(float light) {
  if (!(light > 0)) return 0;
  float const mapped = std::isfinite(light) ? light / (1 + light) : 1;
  float const coded = mapped <= 0.0031308f ? 12.92f * mapped : 1.055f * std::pow(mapped, 1 / 2.4f) - 0.055f;
  return static_cast<unsigned char>(std::lround(255 * std::min(coded, 1.0f)));
}

int word(ImageBytes const& file, std::size_t at) { return file[at] | file[at + 1] << 8; }

} // namespace

void flipRows(ImageBytes& pixels, std::size_t rowBytes) {
  for (auto low = pixels.begin(), high = pixels.end();
       high - low >= 2 * static_cast<std::ptrdiff_t>(rowBytes);) {
    high -= static_cast<std::ptrdiff_t>(rowBytes);
    std::swap_ranges(low, low + static_cast<std::ptrdiff_t>(rowBytes), high);
    low += static_cast<std::ptrdiff_t>(rowBytes);
  }
}

bool takesBmp(ImageBytes const& file) { return startsWith(file, "BM"); }
bool takesGif(ImageBytes const& file) { return startsWith(file, "GIF87a") || startsWith(file, "GIF89a"); }
bool takesPsd(ImageBytes const& file) { return startsWith(file, "8BPS"); }
bool takesHdr(ImageBytes const& file) {
  return startsWith(file, "#?RADIANCE\n") || startsWith(file, "#?RGBE\n");
}
bool takesPnm(ImageBytes const& file) {
  return (startsWith(file, "P5") || startsWith(file, "P6")) && file.size() > 2 && std::isspace(file[2]);
}
bool takesTga(ImageBytes const& file) {
  stbi__context context;
  stbi__start_mem(&context, file.data(), static_cast<int>(std::min<std::size_t>(file.size(), 64)));
  return file.size() > 18 && stbi__tga_test(&context);
}

// What a byte stands for at most: a pixel of one bit becomes four bytes; a run takes two to five bytes for
// 128 pixels; a code of 12 bits a string of up to 4096 pixels.
std::string decodeBmp(ImageBytes const& file, SbImage& image) { return decode(file, 32, image); }
std::string decodePsd(ImageBytes const& file, SbImage& image) { return decode(file, 256, image); }
std::string decodeGif(ImageBytes const& file, SbImage& image) { return decode(file, 16384, image); }

std::string decodePnm(ImageBytes const& file, SbImage& image) {
  PaddedFile padded(file);
  int width = 0, height = 0, components = 0;
  int const bits = stbi__pnm_info(padded.context(), &width, &height, &components);
  if (bits == 0) return "the header is damaged";
  std::string const reason = SbCheckImageSize(width, height, components, file.size(), 1);
  // Where the decoder does not look: that all pixels are there.
  return reason.empty() ? decode(file, 4, image) : reason;
}

std::string decodeTga(ImageBytes const& file, SbImage& image) {
  bool const isRunLength = file[2] >= 8;
  std::size_t const needed = 18 + file[0] + (file[1] ? word(file, 5) * ((file[7] + 7) / 8) : 0) +
                             std::size_t(1) * word(file, 12) * word(file, 14) * ((file[16] + 7) / 8);
  if (!isRunLength && needed > file.size()) return "the file is cut short";
  return decode(file, 256, image);
}

std::string decodeHdr(ImageBytes const& bytes, SbImage& image) {
  if (bytes.size() >= (std::size_t(1) << 30)) return "the file is too large";
  PaddedFile file(bytes);
  std::string const reason = checkSize(file, bytes.size(), 256);
  if (!reason.empty()) return reason;
  int width = 0, height = 0, components = 0;
  stbi__result_info ignored;
  Pixels<float> const decoded(stbi__hdr_load(file.context(), &width, &height, &components, 3, &ignored),
                              stbi_image_free);
  if (!decoded) return lastReason();
  if (file.isReadBeyond()) return "the file is cut short";
  std::size_t const rowBytes = static_cast<std::size_t>(width) * 3;
  ImageBytes pixels(rowBytes * height);
  std::transform(decoded.get(), decoded.get() + pixels.size(), pixels.begin(), toScreen);
  flipRows(pixels, rowBytes);
  image = SbImage(SbVec2i32(width, height), 3, std::move(pixels));
  return {};
}
