#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SoModuleTool.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using Bytes = std::vector<unsigned char>;

class ImageFormats : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(SoModuleTool::initModule("image_formats")) << "it is not built";
  }
  static void TearDownTestSuite() { SoModuleTool::finishModule("image_formats"); }
};

Bytes fromHex(std::string const& hex) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  return bytes;
}

Bytes operator+(Bytes a, Bytes const& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
Bytes text(std::string const& characters) { return Bytes(characters.begin(), characters.end()); }

// Each is 2 x 2: red and green above, blue and white below.
Bytes tga() { return fromHex("000002000000000000000000020002001800") + fromHex("ff0000ffffff0000ff00ff00"); }
Bytes packedTga() {
  return fromHex("00000a000000000000000000020002001800") + fromHex("01ff0000ffffff") +
         fromHex("010000ff00ff00");
}
Bytes bmp() {
  return fromHex(
             "424d4600000000000000360000002800000002000000020000000100180000000000100000000000000000000000000"
             "00000"
             "00000000") +
         fromHex("ff0000ffffff0000") + fromHex("0000ff00ff000000");
}
Bytes psd() {
  return text("8BPS") + fromHex("000100000000000000030000000200000002000800030000000000000000000000000000") +
         fromHex("ff0000ff") + fromHex("00ff00ff") + fromHex("0000ffff");
}
Bytes gif() {
  // Four colours, codes of three bits and more: clear, 0, 1, 2, 3, end.
  return text("GIF89a") + fromHex("02000200910000") + fromHex("ff000000ff000000ffffffff") +
         fromHex("2c0000000002000200000203") + fromHex("440a5500") + fromHex("3b");
}
Bytes ppm() { return text("P6\n# made by hand\n2 2\n255\n") + fromHex("ff000000ff000000ffffffff"); }
Bytes webp() {
  return fromHex(
      "524946462a000000574542505650384c1d0000002f01400000"
      "1f10908220ffe3d1cf7f003404024944ff8388fe4701");
}
Bytes hdr() {
  return text("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 2\n") + fromHex("8000008100800081") +
         fromHex("0000808180808081");
}

std::string hues(SbImage const& image) {
  std::string result;
  for (int y = image.getHeight(); y-- > 0;) {
    for (int x = 0; x < image.getWidth(); ++x) {
      unsigned char const* p = image.getPixel(x, y);
      bool const r = p[0] > 100, g = p[1] > 100, b = p[2] > 100;
      result += r && g && b ? 'w' : r && !g && !b ? 'r' : g && !r && !b ? 'g' : b && !r && !g ? 'b' : '?';
    }
  }
  return result;
}

} // namespace

TEST_F(ImageFormats, PixelsStandWhereTheyStandInTheFile) {
  std::pair<char const*, Bytes> const files[] = {{"tga", tga()}, {"packed tga", packedTga()},
                                                 {"bmp", bmp()}, {"psd", psd()},
                                                 {"ppm", ppm()}, {"hdr", hdr()}};
  for (auto const& [name, file] : files) {
    SbImage image;
    EXPECT_EQ(SbImageReader::read(file, image), "") << name;
    EXPECT_EQ(image.getNumComponents(), 3) << name;
    EXPECT_EQ(hues(image), "rgbw") << name;
  }
}

TEST_F(ImageFormats, LightWithoutBoundIsMappedToTheScreen) {
  // 1 and 1000 of grey: half the range in light is 188 on a screen.
  Bytes const file = text("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n") + fromHex("80808081fafafa8a");
  SbImage image;
  ASSERT_EQ(SbImageReader::read(file, image), "");
  EXPECT_NEAR(image.getPixel(0, 0)[0], 188, 1);
  EXPECT_EQ(image.getPixel(1, 0)[0], 255);
}

TEST_F(ImageFormats, BrokenAndOversizedFilesGiveAReason) {
  auto cut = [](Bytes file, std::size_t by) {
    file.resize(file.size() - by);
    return file;
  };
  Bytes huge = tga();
  huge[13] = huge[15] = 0xff;
  Bytes hugeBmp = bmp();
  hugeBmp[20] = hugeBmp[24] = 0x7f;
  std::pair<char const*, Bytes> const files[] = {
      {"cut tga", cut(tga(), 3)},
      {"cut packed tga", cut(packedTga(), 3)},
      {"cut bmp", cut(bmp(), 9)},
      {"cut psd", cut(psd(), 2)},
      {"cut ppm", cut(ppm(), 1)},
      {"cut hdr", cut(hdr(), 5)},
      {"huge tga", huge},
      {"huge bmp", hugeBmp},
      {"huge gif", text("GIF89a") + fromHex("ffffffff910000")},
      {"huge ppm", text("P6\n60000 60000\n255\n")},
      {"no webp", text("RIFF....WEBPVP8 ....")},
      {"no gif", text("GIF89a")},
  };
  for (auto const& [name, file] : files) {
    SbImage image;
    EXPECT_NE(SbImageReader::read(file, image), "") << name;
    EXPECT_TRUE(image.isEmpty()) << name;
  }
}

TEST_F(ImageFormats, DamagedFilesAreReadOrRefused) {
  std::mt19937 random(11);
  Bytes const files[] = {tga(), packedTga(), bmp(), psd(), gif(), ppm(), webp(), hdr()};
  int refused = 0;
  for (int round = 0; round < 4000; ++round) {
    Bytes file = files[static_cast<std::size_t>(round) % std::size(files)];
    for (unsigned i = 0; i < 1 + random() % 4; ++i)
      file[random() % file.size()] = static_cast<unsigned char>(random());
    if (random() % 3 == 0) file.resize(random() % file.size());
    SbImage image;
    refused += !SbImageReader::read(file, image).empty();
  }
  EXPECT_GT(refused, 500);
}

TEST(ImageFormatsModule, IsNamedWhereItIsMissing) {
  SbImage image;
  EXPECT_NE(SbImageReader::read(bmp(), image).find("\"image_formats\""), std::string::npos);
}
