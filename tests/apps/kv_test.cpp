// The command-line tool: what it says about scenes, and how it ends.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

namespace {

struct Outcome {
  int status;
  std::string output, errors;
};

std::string fileText(std::filesystem::path const& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

class KvTest : public testing::Test {
 public:
  KvTest() { std::filesystem::create_directories(folder); }
  ~KvTest() override { std::filesystem::remove_all(folder); }

  Outcome kv(std::string const& arguments) const {
    std::string const command = (VANTLE_BIN_DIR "/kv ") + arguments + " >" + (folder / "out").string() + " 2>" +
                                (folder / "err").string();
    int const status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, fileText(folder / "out"), fileText(folder / "err")};
  }
  std::string write(std::string const& name, std::string const& body) const {
    std::ofstream(folder / name) << "#Kestrava V1.0 ascii\n" << body << "\n";
    return (folder / name).string();
  }

  std::filesystem::path const folder = std::filesystem::temp_directory_path() / ("kv_test_" + std::to_string(getpid()));
};

/// The value of a key of the JSON text, numbers only.
std::string number(std::string const& json, std::string const& key) {
  std::smatch found;
  return std::regex_search(json, found, std::regex("\"" + key + "\": ([0-9.e+-]+)")) ? found[1].str() : "none";
}

TEST_F(KvTest, CountsOfRealScenes) {
  char const* const given = std::getenv("VANTLE_SCENES");
  std::filesystem::path const scenes = given ? given : VANTLE_SOURCE_DIR "/../shared/scenes";
  if (!std::filesystem::exists(scenes)) GTEST_SKIP() << "the folder with the large scenes is not here";
  struct Case {
    char const* file;
    std::array<char const*, 6> counts;
  };
  for (Case const& c : {Case{"spot.kv", {"13", "13", "0", "6", "5856", "5856"}},
                        Case{"milktruck.kv", {"41", "49", "1", "7", "2856", "3624"}},
                        Case{"engine.kvz", {"399", "966", "19", "11", "75730", "121496"}},
                        Case{"building.kv", {"1185", "4872", "84", "13", "8310", "31186"}},
                        Case{"movietruck.kv", {"2138", "2811", "44", "15", "2769", "3793"}},
                        Case{"castle.kv", {"6084", "8084", "7", "7", "13114", "13114"}}}) {
    Outcome const outcome = kv("info --json " + (scenes / c.file).string());
    EXPECT_EQ(outcome.status, 0) << c.file;
    EXPECT_EQ(outcome.errors, "") << c.file;
    std::array<char const*, 6> const keys = {"nodes", "places", "shared", "depth", "triangles", "trianglesDrawn"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
      EXPECT_EQ(number(outcome.output, keys[i]), c.counts[i]) << c.file << " " << keys[i];
    }
  }
}

TEST_F(KvTest, InfoInWordsAndAsJson) {
  std::string const scene = write("two.kv", "DEF a Group { DEF b Cube { } } USE a Group { USE b IndexedLineSet { vertexProperty "
                                            "VertexProperty { vertex [ 5 0 0, 6 0 0 ] } coordIndex [ 0 1 -1 ] } }");
  EXPECT_EQ(kv("info " + scene).output,
            "header           #Kestrava V1.0 ascii\n"
            "nodes            5\n"
            "places           8\n"
            "shared           2\n"
            "depth            3\n"
            "triangles        12\n"
            "triangles drawn  36\n"
            "lines            1\n"
            "points           0\n"
            "bounding box     -1 -1 -1 to 6 1 1\n"
            "types\n"
            "  Cube                           1\n"
            "  Group                          2\n"
            "  IndexedLineSet                 1\n"
            "  VertexProperty                 1\n");
  EXPECT_EQ(kv("info --json " + write("none.kv", "")).output,
            "{\n  \"header\": \"#Kestrava V1.0 ascii\",\n  \"nodes\": 0,\n  \"places\": 0,\n  \"shared\": 0,\n"
            "  \"depth\": 0,\n  \"triangles\": 0,\n  \"trianglesDrawn\": 0,\n  \"lines\": 0,\n  \"points\": 0,\n"
            "  \"boundingBox\": null,\n  \"types\": {}\n}\n");
}

TEST_F(KvTest, AChainOfDoublingsIsCountedAtOnce) {
  std::string text = "DEF n0 Cube { }";
  for (int i = 1; i <= 40; ++i) {
    text = "DEF n" + std::to_string(i) + " Separator { " + text + " USE n" + std::to_string(i - 1) + " }";
  }
  Outcome const outcome = kv("info --json " + write("chain.kv", text));
  EXPECT_EQ(number(outcome.output, "nodes"), "41");
  EXPECT_EQ(number(outcome.output, "places"), std::to_string((std::uint64_t{1} << 41) - 1));
  EXPECT_EQ(number(outcome.output, "trianglesDrawn"), std::to_string(12 * (std::uint64_t{1} << 40)));
}

TEST_F(KvTest, CheckReadsAllFiles) {
  std::string const good = write("good.kv", "Cube { }"), bad = write("bad.kv", "Cube {\n width x }"),
                    worse = write("worse.kv", "Cube {");
  EXPECT_EQ(kv("check " + good).status, 0);
  Outcome const outcome = kv("check " + bad + " " + good + " " + worse);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, bad + ":3: expected a real number, found 'x'\n" + worse +
                                ":2: expected '}' for the Cube of line 2, found the end of the file\n");
  EXPECT_EQ(kv("info " + bad).status, 1);
  // What a file includes belongs to it.
  std::string const includes = write("includes.kv", "File { name \"bad.kv\" } Cube { }");
  Outcome const included = kv("check " + includes);
  EXPECT_EQ(included.status, 1);
  EXPECT_EQ(included.errors, bad + ":3: expected a real number, found 'x' (included by " + includes + ")\n");
  EXPECT_EQ(kv("check").status, 2);
  EXPECT_EQ(kv("nonsense " + good).status, 2);
}

TEST_F(KvTest, ConvertKeepsTheScene) {
  std::string const scene = write("scene.kv", "DEF a Cube { width 3.50 } USE a");
  std::string const packed = (folder / "packed.kvz").string(), plain = (folder / "plain.kv").string();
  EXPECT_EQ(kv("convert " + scene + " " + packed).status, 0);
  EXPECT_EQ(fileText(packed).substr(0, 2), "\x1f\x8b");
  EXPECT_EQ(kv("convert --ascii " + packed + " " + plain).status, 0);
  EXPECT_EQ(fileText(plain), "#Kestrava V1.0 ascii\n\nDEF a Cube {\n  width 3.5\n}\n\nUSE a\n");
  Outcome const outcome = kv("convert " + scene + " " + (folder / "no" / "where.kv").string());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("No such file or directory"), std::string::npos);
  EXPECT_TRUE(fileText(plain).starts_with("#Kestrava V1.0 ascii")) << "a failure leaves the old file";
  EXPECT_EQ(kv("convert --binary --ascii " + scene + " " + plain).status, 2);
  EXPECT_EQ(kv("convert --json " + scene + " " + plain).status, 2);
}

TEST_F(KvTest, BinaryFormsAreReadWrittenAndChecked) {
  std::string const scene = write("scene.kv", "DEF a Cube { width 3.50 } USE a"), text = (folder / "text.kv").string(),
                    bytes = (folder / "bytes.kv").string(), packed = (folder / "packed.kv").string();
  EXPECT_EQ(kv("convert --binary " + scene + " " + bytes).status, 0);
  EXPECT_TRUE(fileText(bytes).starts_with("#Kestrava V1.0 binary\n"));
  EXPECT_EQ(kv("convert --compress " + bytes + " " + packed).status, 0);
  EXPECT_EQ(fileText(packed).substr(0, 2), "\x1f\x8b");
  EXPECT_EQ(kv("check " + bytes + " " + packed).status, 0);
  EXPECT_EQ(number(kv("info --json " + packed).output, "places"), "2");
  EXPECT_NE(kv("info " + packed).output.find("#Kestrava V1.0 binary"), std::string::npos) << "the form it had is kept";
  EXPECT_EQ(kv("convert --ascii " + packed + " " + text).status, 0);
  EXPECT_EQ(fileText(text), "#Kestrava V1.0 ascii\n\nDEF a Cube {\n  width 3.5\n}\n\nUSE a\n");
  std::ofstream(bytes, std::ios::app) << "more";
  Outcome const outcome = kv("check " + bytes);
  EXPECT_EQ(outcome.status, 1);
  std::regex const message(bytes + ":[0-9]+: there is more data than the scene\n");
  EXPECT_TRUE(std::regex_match(outcome.errors, message)) << outcome.errors;
}

}  // namespace
