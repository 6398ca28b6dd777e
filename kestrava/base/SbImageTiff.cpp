#include "kestrava/base/SbImageCodecs.h"

// Baseline TIFF 6.0, low byte first: the pixels in one uncompressed strip, then the directory.

namespace {

enum FieldType { SHORT = 3, LONG = 4 };

void put(SbImageBytes& file, std::size_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) file.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

void putEntry(SbImageBytes& file, int tag, FieldType type, std::size_t count, std::size_t value) {
  put(file, static_cast<std::size_t>(tag), 2);
  put(file, type, 2);
  put(file, count, 4);
  put(file, value, 4);
}

} // namespace

std::string SbEncodeTiff(SbImage const& image, SbImageBytes& file) {
  auto const width = static_cast<std::size_t>(image.getWidth()),
             height = static_cast<std::size_t>(image.getHeight());
  auto const components = static_cast<std::size_t>(image.getNumComponents());
  std::size_t const pixels = width * height * components;
  std::size_t const bitsAt = 8 + pixels + pixels % 2;
  std::size_t const directoryAt = bitsAt + 8;

  file.reserve(directoryAt + 160);
  file = {'I', 'I', 42, 0};
  put(file, directoryAt, 4);
  for (int y = image.getHeight() - 1; y >= 0; --y) {
    unsigned char const* const row = image.getPixel(0, y);
    file.insert(file.end(), row, row + width * components);
  }
  file.resize(bitsAt);
  for (int i = 0; i < 4; ++i) put(file, 8, 2);

  int const entries = image.hasAlpha() ? 10 : 9;
  put(file, static_cast<std::size_t>(entries), 2);
  putEntry(file, 256, LONG, 1, width);
  putEntry(file, 257, LONG, 1, height);
  // Up to two shorts stand in the entry itself.
  putEntry(file, 258, SHORT, components, components > 2 ? bitsAt : components == 2 ? 0x00080008 : 8);
  putEntry(file, 259, SHORT, 1, 1);                       // not compressed
  putEntry(file, 262, SHORT, 1, components >= 3 ? 2 : 1); // RGB, or grey with 0 black
  putEntry(file, 273, LONG, 1, 8);                        // where the strip starts
  putEntry(file, 277, SHORT, 1, components);
  putEntry(file, 278, LONG, 1, height); // rows in the strip
  putEntry(file, 279, LONG, 1, pixels);
  if (image.hasAlpha()) putEntry(file, 338, SHORT, 1, 2); // alpha, colours not multiplied by it
  put(file, 0, 4);
  return {};
}
