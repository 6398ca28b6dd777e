#include <algorithm>
#include <cstdio>

#include "kestrava/base/SbImageCodecs.h"

namespace {

// The part of a page, in points, that fits A4 and Letter alike.
constexpr double PAGE_WIDTH = 540, PAGE_HEIGHT = 720, MARGIN = 36;

char const PROGRAM[] =
    "%%!PS-Adobe-3.0 EPSF-3.0\n"
    "%%%%BoundingBox: %d %d %d %d\n"
    "%%%%LanguageLevel: 2\n"
    "%%%%Pages: 1\n"
    "%%%%EndComments\n"
    "%%%%Page: 1 1\n"
    "gsave\n"
    "%.4f %.4f translate %.4f %.4f scale\n"
    "/%s setcolorspace\n"
    "<< /ImageType 1 /Width %d /Height %d /BitsPerComponent 8 /Decode [%s]\n"
    "   /ImageMatrix [%d 0 0 %d 0 0] /DataSource currentfile /ASCIIHexDecode filter >> image\n";
char const END[] = ">\ngrestore\nshowpage\n%%EOF\n";

} // namespace

// The rows go from the bottom, as the image matrix says.
std::string SbEncodePostScript(SbImage const& image, SbImageBytes& file) {
  int const width = image.getWidth(), height = image.getHeight();
  bool const grey = image.getNumComponents() == 1;
  double const scale = std::min({1.0, PAGE_WIDTH / width, PAGE_HEIGHT / height});
  double const w = width * scale, h = height * scale;
  char head[1024];
  int const length =
      std::snprintf(head, sizeof head, PROGRAM, int(MARGIN), int(MARGIN), int(MARGIN + w + 0.999),
                    int(MARGIN + h + 0.999), MARGIN, MARGIN, w, h, grey ? "DeviceGray" : "DeviceRGB", width,
                    height, grey ? "0 1" : "0 1 0 1 0 1", width, height);
  file.reserve(sizeof head + image.getNumBytes() * 2 + image.getNumBytes() / 36 + sizeof END);
  file.assign(head, head + length);
  for (std::size_t i = 0; i < image.getNumBytes(); ++i) {
    if (i > 0 && i % 36 == 0) file.push_back('\n');
    file.push_back("0123456789abcdef"[image.getBytes()[i] >> 4]);
    file.push_back("0123456789abcdef"[image.getBytes()[i] & 15]);
  }
  file.insert(file.end(), END, END + sizeof END - 1);
  return {};
}
