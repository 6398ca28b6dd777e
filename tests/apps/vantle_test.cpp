// The program from end to end: arguments, and the picture that it writes of its window.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "kestrava/base/SbImageReader.h"
#include "tests/apps/run_program.h"

namespace {

Outcome run(std::string const& arguments) { return runProgram("vantle", arguments); }

class ProgramTest : public testing::Test {
 public:
  ProgramTest() { std::filesystem::create_directories(folder); }
  ~ProgramTest() override { std::filesystem::remove_all(folder); }
  std::string scene(std::string const& name, std::string const& body) const {
    std::ofstream(folder / name) << "#Kestrava V1.0 ascii\n" << body << "\n";
    return (folder / name).string();
  }
  std::string picture() const { return (folder / "picture.png").string(); }

  std::filesystem::path const folder =
      std::filesystem::temp_directory_path() / ("vantle_program_" + std::to_string(getpid()));
};

/// Colours of a part of a picture, in fractions of its size, and how many pixels are close to one.
struct Part {
  std::set<int> colours;
  int matching = 0;
};

Part lookAt(SbImage const& image, double left, double bottom, double right, double top,
            std::array<int, 3> wanted) {
  Part part;
  for (int y = int(bottom * image.getHeight()); y < int(top * image.getHeight()); ++y) {
    for (int x = int(left * image.getWidth()); x < int(right * image.getWidth()); ++x) {
      unsigned char const* const pixel = image.getPixel(x, y);
      part.colours.insert(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
      bool near = true;
      for (int i = 0; i < 3; ++i) near = near && std::abs(pixel[i] - wanted[i]) < 60;
      part.matching += near;
    }
  }
  return part;
}

constexpr char RED_CUBE[] = "Separator { BaseColor { rgb 1 0 0 } LightModel { model BASE_COLOR } Cube { } }";

TEST_F(ProgramTest, SnapshotShowsTreeAndScene) {
  Outcome const result = run("--snapshot " + picture() + " --size 1000x700 " + scene("red.kv", RED_CUBE));
  ASSERT_EQ(result.status, 0) << result.output;
  SbImage image;
  ASSERT_EQ(SbImageReader::read(picture(), image), "");
  EXPECT_EQ(image.getWidth(), 1000);
  EXPECT_EQ(image.getHeight(), 700);
  // Rows with icons and text in the tree on the left; the cube in the middle.
  EXPECT_GT(lookAt(image, 0.0, 0.3, 0.33, 0.8, {}).colours.size(), 20u);
  Part const view = lookAt(image, 0.36, 0.25, 0.72, 0.8, {255, 0, 0});
  EXPECT_GT(view.matching, 2000);
  EXPECT_GT(view.colours.size(), 1u);
}

TEST_F(ProgramTest, OnlyTheLastSceneIsOpened) {
  std::string const red = scene("red.kv", RED_CUBE);
  std::string const green =
      scene("green.kv", "Separator { BaseColor { rgb 0 1 0 } LightModel { model BASE_COLOR } Cube { } }");
  ASSERT_EQ(run("--snapshot " + picture() + " " + red + " " + green).status, 0);
  SbImage image;
  ASSERT_EQ(SbImageReader::read(picture(), image), "");
  EXPECT_GT(lookAt(image, 0.36, 0.25, 0.72, 0.8, {0, 255, 0}).matching, 2000);
  EXPECT_EQ(lookAt(image, 0.36, 0.25, 0.72, 0.8, {255, 0, 0}).matching, 0);
}

TEST_F(ProgramTest, ArgumentsAndFailures) {
  std::string const good = scene("red.kv", RED_CUBE);
  std::string const bad = scene("bad.kv", "Separator { Cube {");
  std::string const snapshot = "--snapshot " + picture() + " ";
  struct Case {
    std::string arguments;
    int status;
    std::string says;
  } const cases[] = {
      {"--help", 0, "--snapshot FILE.png"},
      {"--version", 0, "vantle 0."},
      {"--wrong", 2, "unknown option --wrong"},
      {"--snapshot", 2, "--snapshot needs a value"},
      {"--snapshot picture.bmp", 2, ".png"},
      {"--size 100x100", 2, "--size goes with --snapshot"},
      {snapshot + "--size 12", 2, "WIDTHxHEIGHT"},
      {good, 1, "no display"},
      {snapshot + bad, 1, "bad.kv:2"},
      {snapshot + (folder / "none.kv").string(), 1, "none.kv"},
      {"--snapshot " + (folder / "no/such/picture.png").string() + " " + good, 1, "no/such/picture.png"},
  };
  for (Case const& c : cases) {
    Outcome const result = run(c.arguments);
    EXPECT_EQ(result.status, c.status) << c.arguments << "\n" << result.output;
    EXPECT_NE(result.output.find(c.says), std::string::npos) << c.arguments << "\n" << result.output;
  }
  EXPECT_FALSE(std::filesystem::exists(picture()));
}

} // namespace
