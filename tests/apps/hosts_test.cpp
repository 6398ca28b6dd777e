// The two sample hosts: each is started with the inspector in every way, and ends as it should.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "kestrava/base/SbImageReader.h"
#include "tests/apps/run_program.h"

namespace {

struct HostCase {
  char const* program;
  char const* inspect; // empty: without
  char const* more = "";
};

class HostsTest : public testing::TestWithParam<HostCase> {
 protected:
  void SetUp() override {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "the hosts need a display";
  }
};

/// On the display of the tests.
Outcome host(std::string const& program, std::string const& arguments) {
  return runProgram(program, arguments,
                    std::string("DISPLAY=") + std::getenv("DISPLAY") + " QT_QPA_PLATFORM=xcb");
}

std::string withoutOwnLines(std::string const& output) {
  std::string rest;
  for (std::size_t at = 0; at < output.size();) {
    std::size_t const end = std::min(output.find('\n', at), output.size() - 1);
    std::string const line = output.substr(at, end + 1 - at);
    if (line.rfind("host_loop: inspected: ", 0) != 0) rest += line;
    at = end + 1;
  }
  return rest;
}

std::string shotFile() {
  return (std::filesystem::temp_directory_path() / ("host_" + std::to_string(getpid()) + ".png")).string();
}

TEST_P(HostsTest, EndsInOrderAndHasDrawnItsScene) {
  HostCase const& c = GetParam();
  std::string const file = shotFile();
  std::string arguments = "--frames 40 " + std::string(c.more);
  if (*c.inspect) arguments += std::string(" --inspect ") + c.inspect;
  Outcome const result = host(c.program, arguments + " --shot " + file);
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_EQ(withoutOwnLines(result.output), "")
      << "neither the toolkit nor Qt had anything to complain about";

  // A scene before a background: something else than the column at the left edge stands in the middle.
  SbImage image;
  ASSERT_EQ(SbImageReader::read(file, image), "");
  int drawn = 0;
  for (int y = 0; y < image.getHeight(); ++y) {
    for (int x = image.getWidth() / 4; x < image.getWidth() * 3 / 4; ++x) {
      for (int i = 0; i < 3; ++i) drawn += std::abs(image.getPixel(x, y)[i] - image.getPixel(2, y)[i]) > 40;
    }
  }
  EXPECT_GT(drawn, image.getWidth() * image.getHeight() / 40);
  std::filesystem::remove(file);
}

INSTANTIATE_TEST_SUITE_P(
    All, HostsTest,
    testing::Values(HostCase{"host_qt", ""}, HostCase{"host_qt", "node"}, HostCase{"host_qt", "manager"},
                    HostCase{"host_qt", "area"}, HostCase{"host_loop", ""}, HostCase{"host_loop", "node"},
                    HostCase{"host_loop", "manager"}, HostCase{"host_loop", "area"},
                    HostCase{"host_loop", "manager", "--over"}, HostCase{"host_loop", "node", "--abrupt"},
                    HostCase{"host_loop", "area", "--abrupt"}),
    [](auto const& given) {
      HostCase const& c = given.param;
      std::string const name = std::string(c.program) + (*c.inspect ? "_" : "") + c.inspect;
      return *c.more ? name + "_" + (c.more + 2) : name;
    });

/// A test of what both hosts print: the lines without the program's name.
std::vector<std::string> linesOf(std::string const& program, std::string const& output) {
  std::vector<std::string> lines;
  std::istringstream in(output);
  for (std::string line; std::getline(in, line);) {
    std::string const prefix = program + ": ";
    EXPECT_EQ(line.substr(0, prefix.size()), prefix) << "nobody else has anything to say";
    if (line.find(": inspected: ") == std::string::npos) lines.push_back(line.substr(std::min(line.size(), prefix.size())));
  }
  return lines;
}

TEST_F(HostsTest, ChangeTheirScenesWhileTheyAreInspected) {
  for (char const* program : {"host_qt", "host_loop"}) {
    for (char const* inspect : {"manager", "node"}) {
      Outcome const result =
          host(program, std::string("--frames 175 --keys srpaasplkklrrrra --inspect ") + inspect);
      EXPECT_EQ(result.status, 0) << result.output;
      std::vector<std::string> const lines = linesOf(program, result.output);
      std::string const sample = std::string(program) == "host_qt" ? "moon" : "hand";
      std::vector<std::string> const expected{
          sample + " stands at one more place",
          "removed " + sample,
          "there is no shape to be replaced yet",
          "added thing2",
          "added thing3",
          "thing3 stands at one more place",
          "replaced the shape of thing3 by a Sphere",
          "loaded host_part.kv, with 1 boxes",
          "added a kit",
          "the kit's shape is a Sphere",
          "loaded host_part.kv, with 2 boxes",
          "removed thing2",
          "removed thing3",
          "removed thing3",
          "nothing is left to be removed",
          "added thing7",
      };
      EXPECT_EQ(lines, expected) << program << " " << inspect;
    }
  }
}

TEST_F(HostsTest, ManyChangesEndByThemselves) {
  for (char const* program : {"host_qt", "host_loop"}) {
    Outcome const result = host(program, "--frames 260 --keys m --inspect area");
    EXPECT_EQ(result.status, 0) << result.output;
    std::vector<std::string> const lines = linesOf(program, result.output);
    ASSERT_EQ(lines.size(), 2u) << result.output;
    EXPECT_EQ(lines[1].substr(0, 17), "30000 changes in ");
  }
}

TEST_F(HostsTest, GoOnWithoutTheInspector) {
  for (char const* program : {"host_qt", "host_loop"}) {
    std::string const environment = std::string("DISPLAY=") + std::getenv("DISPLAY") +
                                    " QT_QPA_PLATFORM=xcb KSV_VANTLE_LIBRARY=/nowhere/libqor_vantle.so";
    Outcome const result = runProgram(program, "--inspect node --frames 10", environment);
    EXPECT_EQ(result.status, 0) << program;
    // host_qt says it in its window.
    bool const says = result.output.find("/nowhere/libqor_vantle.so") != std::string::npos;
    EXPECT_EQ(says, std::string(program) == "host_loop") << program << ": " << result.output;
  }
}

TEST_F(HostsTest, ArgumentsThatMakeNoSense) {
  struct {
    char const* arguments;
    int status;
    char const* says;
  } const cases[] = {
      {"--help", 0, "--inspect"},
      {"--inspect", 2, "value"},
      {"--inspect window", 2, "node, manager or area"},
      {"--frames 0", 2, "from 1"},
      {"--shot a.png", 2, "goes with --frames"},
  };
  for (char const* program : {"host_qt", "host_loop"}) {
    for (auto const& c : cases) {
      Outcome const result = host(program, c.arguments);
      // Qt's own parser knows one status for whatever it refuses.
      bool const byQt = std::string(program) == "host_qt" && std::string(c.arguments) == "--inspect";
      EXPECT_EQ(result.status, byQt ? 1 : c.status) << program << " " << c.arguments << "\n" << result.output;
      EXPECT_NE(result.output.find(c.says), std::string::npos) << program << " " << c.arguments << "\n"
                                                               << result.output;
    }
  }
}

} // namespace
