// The gallery: every page is drawn, and many look as pictures that somebody has looked at.
//
// The pictures in tests/data/gallery are made anew, after a look at what has changed, from the root of the
// source by
//   build/release/bin/gallery --shots tests/data/gallery --size 320x240 PAGE...
// with LIBGL_ALWAYS_SOFTWARE=1. Any page can be added to them; pages with choices bring a picture for each.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SoModuleTool.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/render/SoOffscreenRenderArea.h"
#include "tests/apps/run_program.h"

namespace {

namespace fs = std::filesystem;

fs::path const SCENES = VANTLE_SOURCE_DIR "/scenes/gallery";
fs::path const PICTURES = VANTLE_SOURCE_DIR "/tests/data/gallery";

Outcome gallery(std::string const& arguments) { return runProgram("gallery", arguments); }

std::vector<std::string> lines(std::string const& text) {
  std::vector<std::string> result;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) result.push_back(line);
  return result;
}

std::vector<std::string> pageNames() {
  std::vector<std::string> names;
  for (std::string const& line : lines(gallery("--list").output))
    names.push_back(line.substr(0, line.find(' ')));
  return names;
}

SbImage readPicture(fs::path const& path) {
  SbImage image;
  EXPECT_EQ(SbImageReader::read(path.string(), image), "");
  return image;
}

constexpr int BLOCK = 8; // pixels

/// The mean of each colour in a block of pixels.
std::array<double, 3> meanOf(SbImage const& image, int left, int bottom) {
  std::array<double, 3> sum{};
  for (int y = bottom; y < bottom + BLOCK; ++y) {
    for (int x = left; x < left + BLOCK; ++x) {
      unsigned char const* const pixel = image.getPixel(x, y);
      for (int i = 0; i < 3; ++i) sum[i] += pixel[i];
    }
  }
  for (double& s : sum) s /= BLOCK * BLOCK;
  return sum;
}

/// Blocks whose means differ by more than different rasterisers differ at edges and in letters.
int countDifferentBlocks(SbImage const& a, SbImage const& b) {
  constexpr double TOLERANCE = 8; // of 255
  int different = 0;
  for (int y = 0; y + BLOCK <= a.getHeight(); y += BLOCK) {
    for (int x = 0; x + BLOCK <= a.getWidth(); x += BLOCK) {
      std::array<double, 3> const p = meanOf(a, x, y), q = meanOf(b, x, y);
      bool far = false;
      for (int i = 0; i < 3; ++i) far = far || std::abs(p[i] - q[i]) > TOLERANCE;
      different += far;
    }
  }
  return different;
}

::testing::AssertionResult looksLike(SbImage const& image, SbImage const& stored) {
  if (image.getWidth() != stored.getWidth() || image.getHeight() != stored.getHeight()) {
    return ::testing::AssertionFailure() << "it has another size";
  }
  constexpr int FEW = 2;
  int const different = countDifferentBlocks(image, stored);
  if (different <= FEW) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << different << " blocks of " << BLOCK << " x " << BLOCK << " pixels differ";
}

std::string fileText(fs::path const& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

SoRef<SoNode> read(std::string const& text, bool binary = false) {
  SoInput in;
  in.setBuffer(text, binary);
  SoRef<SoNode> const root(SoDB::readAll(&in));
  EXPECT_TRUE(root) << in.getErrorText().str();
  return root;
}

std::string written(SoNode* root, bool binary) {
  SoOutput out;
  out.setBinary(binary);
  out.setBuffer();
  SoWriteAction(&out).apply(root);
  EXPECT_FALSE(out.hasFailed()) << out.getErrorText().str();
  return out.takeBuffer();
}

SbImage draw(SoNode* root) {
  SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(320, 240));
  area->setSceneGraph(root);
  area->getGLRenderAction().setFitDepth(true);
  SbImage image;
  EXPECT_TRUE(area->renderToImage(image));
  return image;
}

/// All pages are drawn once, for all tests.
class GalleryTest : public testing::Test {
 public:
  static void SetUpTestSuite() {
    s_folder = fs::temp_directory_path() / ("gallery_test_" + std::to_string(getpid()));
    s_shots = gallery("--shots " + s_folder.string() + " --size 320x240");
    SoInput::addDirectoryLast(SCENES.string());
    SoModuleTool::initModule("foreign_formats");
  }
  static void TearDownTestSuite() {
    SoModuleTool::finishModule("foreign_formats");
    SoInput::removeDirectory(SCENES.string());
    fs::remove_all(s_folder);
  }

 protected:
  static inline fs::path s_folder;
  static inline Outcome s_shots;
};

TEST_F(GalleryTest, EveryPageIsDrawnWithoutComplaint) {
  EXPECT_EQ(s_shots.status, 0);
  // A message of the toolkit would stand between the names of the files.
  for (std::string const& line : lines(s_shots.output)) EXPECT_TRUE(fs::exists(line)) << line;
  std::vector<std::string> const pages = pageNames();
  EXPECT_GT(pages.size(), 40u);
  for (std::string const& page : pages) {
    SbImage const image = readPicture(s_folder / (page + ".png"));
    ASSERT_EQ(image.getWidth(), 320) << page;
    ASSERT_EQ(image.getHeight(), 240) << page;
    int drawn = 0;
    for (int y = 0; y < 240; ++y) {
      for (int x = 0; x < 320; ++x) {
        drawn += std::memcmp(image.getPixel(x, y), image.getPixel(0, y), 3) != 0;
      }
    }
    EXPECT_GT(drawn, 700) << page << " has little before its background";
  }
}

TEST_F(GalleryTest, PagesLookAsStored) {
  int compared = 0;
  for (auto const& stored : fs::directory_iterator(PICTURES)) {
    fs::path const drawn = s_folder / stored.path().filename();
    ASSERT_TRUE(fs::exists(drawn)) << stored.path() << " is of no page";
    EXPECT_TRUE(looksLike(readPicture(drawn), readPicture(stored.path()))) << stored.path().stem();
    ++compared;
  }
  EXPECT_GE(compared, 12);
}

TEST_F(GalleryTest, TheComparisonSeesSmallFaults) {
  struct {
    char const* page;
    char const* from;
    char const* to;
  } const cases[] = {
      // One of the two normals that four faces share by index.
      {"normals", "normalIndex [ 0, 1, 0, 1 ]", "normalIndex [ 0, 0, 0, 1 ]"},
      {"normals", "Normal { vector 0 0 1 }", "Normal { vector 0 1 0 }"},
      {"crease-angle", "creaseAngle 0.6", "creaseAngle 3.2"},
      {"indexed-faces", "MaterialBinding { value PER_FACE_INDEXED }", "MaterialBinding { value PER_FACE }"},
      {"texture-models", "model DECAL", "model MODULATE"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(c.page) + ": " + c.to);
    std::string text = fileText(SCENES / (std::string(c.page) + ".kv"));
    SbImage const stored = readPicture(PICTURES / (std::string(c.page) + ".png"));
    EXPECT_TRUE(looksLike(draw(read(text)), stored));
    std::size_t const at = text.find(c.from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string(c.from).size(), c.to);
    EXPECT_FALSE(looksLike(draw(read(text)), stored));
  }
}

TEST_F(GalleryTest, ScenesSurviveBeingWritten) {
  int scenes = 0;
  for (auto const& entry : fs::directory_iterator(SCENES)) {
    if (entry.path().extension() != ".kv") continue;
    SCOPED_TRACE(entry.path().filename());
    SoRef<SoNode> const root = read(fileText(entry.path()));
    ASSERT_TRUE(root);
    std::string const ascii = written(root, false);
    // The texts are too long to be printed.
    EXPECT_TRUE(written(read(ascii), false) == ascii) << "as text";
    EXPECT_TRUE(written(read(written(root, true), true), false) == ascii) << "in binary form";
    ++scenes;
  }
  EXPECT_GT(scenes, 40);
}

TEST_F(GalleryTest, ArgumentsThatMakeNoSense) {
  std::string const shots = "--shots " + s_folder.string() + " ";
  struct {
    std::string arguments;
    char const* says;
  } const cases[] = {
      {"--wrong", "unknown option --wrong"},       {"no-such-page", "there is no page 'no-such-page'"},
      {"primitives lights", "one page at a time"}, {"--size 100x100", "--size goes with --shots"},
      {"--shots", "--shots needs a value"},        {shots + "--size 12", "WIDTHxHEIGHT"},
      {shots + "--size 0x100", "WIDTHxHEIGHT"},    {"--list primitives", "--list stands alone"},
  };
  for (auto const& c : cases) {
    Outcome const result = gallery(c.arguments);
    EXPECT_EQ(result.status, 2) << c.arguments;
    EXPECT_NE(result.output.find(c.says), std::string::npos) << c.arguments << "\n" << result.output;
    EXPECT_NE(result.output.find("Usage: gallery"), std::string::npos) << c.arguments;
  }
  EXPECT_EQ(gallery("--help").status, 0);
  EXPECT_EQ(gallery("--shots /dev/null/pictures primitives").status, 1);
  Outcome const window = gallery("primitives");
  EXPECT_EQ(window.status, 1);
  EXPECT_NE(window.output.find("no display"), std::string::npos);
}

} // namespace
