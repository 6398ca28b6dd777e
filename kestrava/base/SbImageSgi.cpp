#include <algorithm>

#include "kestrava/base/SbImageCodecs.h"

// SGI RGB: a header of 512 bytes, numbers with the high byte first, one plane a component, rows from the
// bottom.

namespace {

constexpr std::size_t HEADER_BYTES = 512;
constexpr int MAX_EXTENT = 65535;
char const* const TRUNCATED = "the file is truncated";

unsigned read16(unsigned char const* p) { return static_cast<unsigned>(p[0] << 8 | p[1]); }
std::size_t read32(unsigned char const* p) {
  return static_cast<std::size_t>(read16(p)) << 16 | read16(p + 2);
}

struct Header {
  bool packed;
  std::size_t sampleBytes;
  int width, height, components;

  std::size_t pixelAt(int x) const {
    return static_cast<std::size_t>(x) * static_cast<std::size_t>(components);
  }
};

std::string readHeader(SbImageBytes const& file, Header& header) {
  if (file.size() < HEADER_BYTES) return TRUNCATED;
  unsigned const dimensions = read16(&file[4]);
  header.packed = file[2] != 0;
  header.sampleBytes = file[3];
  header.width = static_cast<int>(read16(&file[6]));
  header.height = dimensions >= 2 ? static_cast<int>(read16(&file[8])) : 1;
  header.components = dimensions >= 3 ? static_cast<int>(read16(&file[10])) : 1;
  if (file[2] > 1 || header.sampleBytes < 1 || header.sampleBytes > 2 || dimensions < 1 || dimensions > 3 ||
      header.components > 4 || read32(&file[104]) != 0) {
    return "the file is of a kind of SGI image that is not supported";
  }
  return {};
}

// Both take the high byte of each sample; the samples of a pixel lie side by side in `to`.
void readPlain(unsigned char const* from, Header const& header, unsigned char* to) {
  for (int x = 0; x < header.width; ++x)
    to[header.pixelAt(x)] = from[static_cast<std::size_t>(x) * header.sampleBytes];
}

bool readPacked(unsigned char const* from, unsigned char const* end, Header const& header,
                unsigned char* to) {
  auto const sample = static_cast<std::ptrdiff_t>(header.sampleBytes);
  for (int x = 0; x < header.width;) {
    if (end - from < sample) return false;
    unsigned const code = from[sample - 1];
    from += sample;
    int const count = static_cast<int>(code & 0x7f);
    bool const literal = code & 0x80;
    if (count == 0 || count > header.width - x || end - from < (literal ? count : 1) * sample) return false;
    for (int i = 0; i < count; ++i) to[header.pixelAt(x + i)] = from[literal ? i * sample : 0];
    from += (literal ? count : 1) * sample;
    x += count;
  }
  return true;
}

void put16(unsigned char* p, int value) {
  p[0] = static_cast<unsigned char>(value >> 8);
  p[1] = static_cast<unsigned char>(value);
}

} // namespace

std::string SbDecodeSgi(SbImageBytes const& file, SbImage& image) {
  Header h{};
  std::string reason = readHeader(file, h);
  // Packed rows may share their data, but each has eight bytes in the tables.
  std::size_t const ratio = h.packed ? MAX_EXTENT / 8 + 1 : 1;
  if (reason.empty()) reason = SbCheckImageSize(h.width, h.height, h.components, file.size(), ratio);
  if (!reason.empty()) return reason;
  auto const rows = static_cast<std::size_t>(h.height) * static_cast<std::size_t>(h.components);
  std::size_t const rowBytes = static_cast<std::size_t>(h.width) * h.sampleBytes;
  if (file.size() - HEADER_BYTES < rows * (h.packed ? 8 : rowBytes)) return TRUNCATED;

  SbImageBytes pixels(rows * static_cast<std::size_t>(h.width));
  for (std::size_t row = 0; row < rows; ++row) {
    std::size_t const y = row % static_cast<std::size_t>(h.height),
                      component = row / static_cast<std::size_t>(h.height);
    unsigned char* const to = &pixels[y * static_cast<std::size_t>(h.width * h.components) + component];
    if (!h.packed) {
      readPlain(&file[HEADER_BYTES + row * rowBytes], h, to);
      continue;
    }
    std::size_t const start = read32(&file[HEADER_BYTES + row * 4]);
    std::size_t const length = read32(&file[HEADER_BYTES + (rows + row) * 4]);
    if (start > file.size() || length > file.size() - start) return TRUNCATED;
    if (!readPacked(file.data() + start, file.data() + start + length, h, to))
      return "a packed row is damaged";
  }
  image = SbImage(SbVec2i32(h.width, h.height), h.components, std::move(pixels));
  return {};
}

std::string SbEncodeSgi(SbImage const& image, SbImageBytes& file) {
  int const width = image.getWidth(), height = image.getHeight(), components = image.getNumComponents();
  if (width > MAX_EXTENT || height > MAX_EXTENT)
    return "the format has no images of more than 65535 pixels a side";
  file.assign(HEADER_BYTES, 0);
  put16(&file[0], 474);
  file[3] = 1;
  put16(&file[4], components == 1 ? 2 : 3);
  put16(&file[6], width);
  put16(&file[8], height);
  put16(&file[10], components);
  put16(&file[18], 255); // largest sample, four bytes
  file.reserve(HEADER_BYTES + image.getNumBytes());
  for (int component = 0; component < components; ++component) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) file.push_back(image.getPixel(x, y)[component]);
    }
  }
  return {};
}
