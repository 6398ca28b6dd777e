#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>

#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SbImageWriter.h"

namespace fs = std::filesystem;

namespace {

using Bytes = SbImage::Bytes;

SbImage smooth(int width, int height, int components) {
  Bytes bytes;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      int const values[] = {x * 255 / width, y * 255 / height, 128, 255 - x};
      for (int c = 0; c < components; ++c) bytes.push_back(static_cast<unsigned char>(values[c]));
    }
  }
  return SbImage(SbVec2i32(width, height), components, std::move(bytes));
}

Bytes contents(fs::path const& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

void put32(Bytes& out, std::size_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<unsigned char>(value >> shift));
}

void putChunk(Bytes& out, char const* name, Bytes const& data) {
  put32(out, data.size());
  std::size_t const start = out.size();
  out.insert(out.end(), name, name + 4);
  out.insert(out.end(), data.begin(), data.end());
  put32(out, crc32(0, &out[start], static_cast<uInt>(out.size() - start)));
}

/// A PNG file put together by hand; `rows` with the filter byte of each row.
Bytes png(unsigned width, unsigned height, unsigned char bits, unsigned char colorType, Bytes const& rows,
          Bytes const& palette = {}, Bytes const& transparency = {}) {
  Bytes out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'}, header;
  put32(header, width);
  put32(header, height);
  header.insert(header.end(), {bits, colorType, 0, 0, 0});
  putChunk(out, "IHDR", header);
  if (!palette.empty()) putChunk(out, "PLTE", palette);
  if (!transparency.empty()) putChunk(out, "tRNS", transparency);
  uLongf size = compressBound(rows.size());
  Bytes packed(size);
  compress(packed.data(), &size, rows.data(), rows.size());
  packed.resize(size);
  putChunk(out, "IDAT", packed);
  putChunk(out, "IEND", {});
  return out;
}

class ImageFiles : public testing::Test {
 protected:
  ImageFiles() { fs::create_directories(m_folder); }
  ~ImageFiles() override { fs::remove_all(m_folder); }
  SbString path(std::string const& name) const { return SbString((m_folder / name).string()); }
  Bytes written(std::string const& name, SbImage const& image) {
    EXPECT_EQ(SbImageWriter::write(path(name), image), "");
    return contents(path(name).str());
  }

  fs::path const m_folder =
      fs::temp_directory_path() / ("kestrava_image_" + std::to_string(::getpid()) + "_" +
                                   testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST(SbImage, RefusesBytesThatDoNotFit) {
  EXPECT_FALSE(SbImage(SbVec3i32(2, 3, 2), 3, Bytes(36)).isEmpty());
  EXPECT_TRUE(SbImage(SbVec2i32(2, 3), 3, Bytes(17)).isEmpty());
  EXPECT_TRUE(SbImage(SbVec2i32(-2, -3), 1, Bytes(6)).isEmpty());
  EXPECT_TRUE(SbImage(SbVec2i32(2, 3), 5, Bytes(30)).isEmpty());
  EXPECT_EQ(SbImage::countBytes(SbVec3i32(2147483647, 2147483647, 2147483647), 4), 0u);
  EXPECT_EQ(smooth(4, 4, 3), smooth(4, 4, 3));
  EXPECT_FALSE(smooth(4, 4, 3) == smooth(4, 4, 4));
}

TEST_F(ImageFiles, LosslessFormatsRoundTrip) {
  for (char const* name : {"a.png", "a.PNG", "a.rgb", "a.sgi"}) {
    for (int components = 1; components <= 4; ++components) {
      SbImage const image = smooth(37, 21, components);
      SbImage back;
      ASSERT_EQ(SbImageWriter::write(path(name), image), "");
      ASSERT_EQ(SbImageReader::read(path(name), back), "");
      EXPECT_EQ(back, image) << name << ", " << components;
    }
  }
}

TEST_F(ImageFiles, JpegIsCloseAndWithoutAlpha) {
  for (int components = 1; components <= 4; ++components) {
    SbImage back, opaque = smooth(64, 48, components <= 2 ? 1 : 3);
    ASSERT_EQ(SbImageWriter::write(path("a.jpeg"), smooth(64, 48, components), 95), "");
    fs::rename(path("a.jpeg").str(), path("a.png").str()); // the content counts
    ASSERT_EQ(SbImageReader::read(path("a.png"), back), "");
    ASSERT_EQ(back.getNumBytes(), opaque.getNumBytes());
    for (std::size_t i = 0; i < back.getNumBytes(); ++i)
      EXPECT_NEAR(back.getBytes()[i], opaque.getBytes()[i], 8);
  }
}

TEST_F(ImageFiles, TiffCanBeWalked) {
  for (int components = 1; components <= 4; ++components) {
    SbImage const image = smooth(5, 3, components);
    Bytes const file = written("a.tiff", image);
    auto number = [&](std::size_t at, int bytes) {
      std::size_t value = 0;
      for (int i = bytes - 1; i >= 0; --i) value = value << 8 | file.at(at + i);
      return value;
    };
    ASSERT_EQ(number(0, 4), 0x002a4949u);
    std::map<std::size_t, std::size_t> tags, counts;
    std::size_t const directory = number(4, 4);
    for (std::size_t i = 0; i < number(directory, 2); ++i) {
      std::size_t const entry = directory + 2 + 12 * i;
      tags[number(entry, 2)] =
          number(entry + 8, number(entry + 2, 2) == 3 && number(entry + 4, 4) == 1 ? 2 : 4);
      counts[number(entry, 2)] = number(entry + 4, 4);
    }
    EXPECT_EQ(tags[256], 5u);
    EXPECT_EQ(tags[257], 3u);
    EXPECT_EQ(tags[277], static_cast<std::size_t>(components));
    EXPECT_EQ(counts[258], static_cast<std::size_t>(components));
    if (components > 2) {
      EXPECT_EQ(number(tags[258] + 2 * components - 2, 2), 8u);
    }
    EXPECT_EQ(tags[262], components >= 3 ? 2u : 1u);
    EXPECT_EQ(tags.count(338), components % 2 == 0 ? 1u : 0u);
    ASSERT_EQ(tags[279], image.getNumBytes());
    auto const row = static_cast<std::size_t>(5 * components);
    for (int y = 0; y < 3; ++y)
      EXPECT_EQ(std::memcmp(&file.at(tags[273] + (2 - y) * row), image.getPixel(0, y), row), 0);
  }
}

TEST_F(ImageFiles, PostScriptHoldsThePixels) {
  Bytes const file = written("a.ps", SbImage(SbVec2i32(2, 1), 4, {0x12, 0x34, 0x56, 0, 0xff, 0, 0xab, 9}));
  std::string const text(file.begin(), file.end());
  EXPECT_TRUE(text.starts_with("%!PS-Adobe-3.0"));
  EXPECT_NE(text.find("%%BoundingBox: 36 36 38 37\n"), std::string::npos);
  EXPECT_NE(text.find("image\n123456ff00ab>\n"), std::string::npos);
}

TEST_F(ImageFiles, KindsOfPngAreExpanded) {
  Bytes const palette = {10, 20, 30, 40, 50, 60};
  struct {
    char const* name;
    Bytes file;
    int components;
    Bytes pixels;
  } const cases[] = {
      {"palette", png(3, 1, 1, 3, {0, 0x40}, palette), 3, {10, 20, 30, 40, 50, 60, 10, 20, 30}},
      {"palette with alpha", png(2, 1, 8, 3, {0, 1, 0}, palette, {7, 8}), 4, {40, 50, 60, 8, 10, 20, 30, 7}},
      {"1-bit grey", png(3, 1, 1, 0, {0, 0xa0}), 1, {255, 0, 255}},
      {"16-bit grey", png(2, 1, 16, 0, {0, 0x80, 0x80, 0xff, 0xff}), 1, {0x80, 0xff}},
      {"16-bit RGB", png(1, 1, 16, 2, {0, 1, 1, 2, 2, 3, 3}), 3, {1, 2, 3}},
      {"rows from the bottom", png(1, 2, 8, 0, {0, 5, 0, 6}), 1, {6, 5}},
  };
  for (auto const& test : cases) {
    SbImage image;
    EXPECT_EQ(SbImageReader::read(test.file, image), "") << test.name;
    ASSERT_EQ(image.getNumComponents(), test.components) << test.name;
    EXPECT_EQ(*image.getSharedBytes(), test.pixels) << test.name;
  }
}

TEST_F(ImageFiles, PackedSgi) {
  Bytes file(512);
  Bytes const head = {1, 0xda, 1, 1, 0, 2, 0, 5, 0, 2, 0, 1};
  std::copy(head.begin(), head.end(), file.begin());
  for (std::size_t value : {528, 528, 6, 6}) put32(file, value); // both rows are the same
  file.insert(file.end(), {0x82, 11, 12, 0x03, 13, 0});
  SbImage image;
  EXPECT_EQ(SbImageReader::read(file, image), "");
  EXPECT_EQ(*image.getSharedBytes(), (Bytes{11, 12, 13, 13, 13, 11, 12, 13, 13, 13}));
  file[528] = 0x86; // six pixels in a row of five
  EXPECT_NE(SbImageReader::read(file, image), "");
  file[512] = 0x7f; // the row starts behind the end
  EXPECT_NE(SbImageReader::read(file, image), "");
}

TEST_F(ImageFiles, DamagedFilesGiveAReasonAndChangeNothing) {
  SbImage const before = smooth(2, 2, 1);
  std::mt19937 random(1);
  for (char const* name : {"a.png", "a.jpg", "a.rgb"}) {
    Bytes const whole = written(name, smooth(40, 30, 3));
    // Of a PNG the last chunk, which is empty, is not missed.
    std::size_t const needed = whole.size() - (std::string(name) == "a.png" ? 12 : 0);
    for (std::size_t length = 0; length < needed; length += 1 + length / 50) {
      SbImage image = before;
      EXPECT_NE(SbImageReader::read(Bytes(whole.begin(), whole.begin() + length), image), "")
          << name << " " << length;
      EXPECT_EQ(image, before);
    }
    for (int i = 0; i < 400; ++i) {
      Bytes damaged = whole;
      for (int k = 0; k <= i % 3; ++k)
        damaged[random() % std::min<std::size_t>(damaged.size(), 700)] = random() & 0xff;
      SbImage image;
      std::string const reason = SbImageReader::read(damaged, image);
      EXPECT_EQ(reason.empty(), !image.isEmpty());
    }
  }
}

TEST_F(ImageFiles, AbsurdSizesAreRefusedWithoutTakingMemory) {
  Bytes jpeg = written("a.jpg", smooth(8, 8, 3));
  Bytes const frame = {0xff, 0xc0, 0, 17, 8};
  auto const size = std::search(jpeg.begin(), jpeg.end(), frame.begin(), frame.end()) + 5;
  std::fill_n(size, 4, 0xfd);
  Bytes sgi = written("a.rgb", smooth(8, 8, 3));
  std::fill_n(sgi.begin() + 6, 4, 0xff);
  for (Bytes const& file :
       {png(1'000'000, 1'000'000, 8, 6, {0}), png(20'000, 10'000, 8, 6, {0}), jpeg, sgi}) {
    SbImage image;
    std::string const reason = SbImageReader::read(file, image);
    EXPECT_TRUE(reason.find("too large") != std::string::npos ||
                reason.find("too short") != std::string::npos)
        << reason;
  }
}

TEST_F(ImageFiles, WhatCanNotBeReadOrWritten) {
  SbImage image;
  std::ofstream(path("empty.png").str());
  std::ofstream(path("text.png").str()) << "no image at all";
  for (SbString const& name : {path("missing.png"), path("empty.png"), path("text.png"), path("")}) {
    EXPECT_NE(SbImageReader::read(name, image).find(name.str()), std::string::npos);
  }
  SbImage const good = smooth(200, 200, 3);
  EXPECT_NE(SbImageWriter::write(path("a.bmp"), good), "");
  EXPECT_NE(SbImageWriter::write(path("none"), good), "");
  EXPECT_NE(SbImageWriter::write(path("missing/a.png"), good), "");
  EXPECT_NE(SbImageWriter::write(path("a.png"), SbImage()), "");
  fs::create_symlink("/dev/full", path("full.rgb").str());
  EXPECT_NE(SbImageWriter::write(path("full.rgb"), good), "");
  EXPECT_TRUE(fs::is_symlink(path("full.rgb").str()));
  EXPECT_FALSE(fs::exists(path("a.png").str()));

  Bytes const old = written("kept.rgb", smooth(2, 2, 1));
  EXPECT_NE(SbImageWriter::write(path("kept.rgb"), SbImage(SbVec2i32(70000, 1), 1, Bytes(70000))), "");
  EXPECT_EQ(contents(path("kept.rgb").str()), old);
}

} // namespace
