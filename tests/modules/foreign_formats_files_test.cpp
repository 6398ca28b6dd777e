// How files of foreign formats are found, refused and survived.

#include <chrono>
#include <random>

#include "foreign_formats_helpers.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoTexture2.h"

using namespace model_test;
using io_test::fileText;
using io_test::HEADER;

namespace {

class ForeignFiles : public ForeignFormats {};

/// Watches how far reading has come.
class WatchedInput : public SoInput {
 public:
  void updateReadPercent(double percent) override { percents.push_back(percent); }
  std::vector<double> percents;
};

} // namespace

TEST_F(ForeignFiles, AreIncludedBySceneFilesWithWhatLiesBesideThem) {
  TemporaryFolder const folder;
  std::filesystem::create_directories(folder / "parts/deep");
  for (char const* name : {"quads.gltf", "quads.bin", "quadrants.png"}) {
    std::filesystem::copy(MODELS + name, folder / "parts/deep");
  }
  folder.write("parts/inner.kv", std::string(HEADER) + "Separator { File { name \"deep/quads.gltf\" } }");
  std::string const outer =
      folder.write("outer.kv", std::string(HEADER) + "Separator { File { name \"parts/inner.kv\" } }");
  ReadErrors errors;
  SoRef<SoNode> const root = io_test::readFile(outer);
  ASSERT_TRUE(root);
  EXPECT_EQ(pathsTo<SoIndexedFaceSet>(root).size(), 3u);
  EXPECT_FALSE(nodesOf<SoTexture2>(root).at(0)->getImage().isEmpty());
  for (auto const& text : errors.texts) ADD_FAILURE() << text;
}

TEST_F(ForeignFiles, CompressedInMemoryAndUnnamedOnesAreRead) {
  TemporaryFolder const folder;
  std::filesystem::copy(MODELS + "square.ply", folder / "square.ply");
  ASSERT_EQ(std::system(("gzip -k '" + folder / "square.ply" + "'").c_str()), 0);
  std::filesystem::copy(MODELS + "square.ply", folder / "nameless");
  SoInput::addInMemoryTextFile("memory/square.ply", SbString(fileText(MODELS + "square.ply")));
  for (std::string const& name :
       {folder / "square.ply.gz", folder / "nameless", std::string("memory/square.ply")}) {
    SoRef<SoNode> const root = io_test::readFile(name);
    ASSERT_TRUE(root) << name;
    EXPECT_TRUE(hasBounds(root, SbVec3f(0, 0, 0), SbVec3f(1, 1, 0))) << name;
  }
}

TEST_F(ForeignFiles, ProgressRisesToTheEndAndTheStreamHasNoFault) {
  WatchedInput in;
  ASSERT_TRUE(in.openFile((MODELS + "quads.glb").c_str()));
  SoRef<SoNode> const root(SoDB::readAll(&in));
  ASSERT_TRUE(root);
  EXPECT_FALSE(in.hasFailed());
  ASSERT_GE(in.percents.size(), 3u);
  EXPECT_TRUE(std::is_sorted(in.percents.begin(), in.percents.end()));
  EXPECT_EQ(in.percents.back(), 100);
}

TEST_F(ForeignFiles, WhatCanNotBeReadIsOneErrorWithNameAndReason) {
  TemporaryFolder const folder;
  std::string const binary = fileText(MODELS + "corner-binary.stl");
  struct Case {
    std::string name, content, reason;
  };
  Case const cases[] = {
      {"noBuffer.gltf", fileText(MODELS + "quads.gltf"), "quads.bin"},
      {"cut.stl", binary.substr(0, 200), "STL"},
      {"text.glb", "this is no model", "not what the name says"},
      {"words.dae", "<?xml version=\"1.0\"?><COLLADA", "malformed XML"},
      {"words.fbx", "; FBX 7.4.0 project file\nObjects:  {", "FBX"},
      {"empty.obj", "", "the file is empty"},
      {"scene.obj", "#Kestrava V9.9 ascii\n", "version"},
      {"any.thing", "something else altogether", "expected the header"},
      {"packed.ply.gz", "\x1f\x8b\x08 no gzip at all", "compressed"},
  };
  for (Case const& c : cases) {
    std::string const path = folder.write(c.name, c.content);
    ReadErrors errors;
    EXPECT_FALSE(io_test::readFile(path)) << c.name;
    ASSERT_EQ(errors.texts.size(), 1u) << c.name;
    EXPECT_TRUE(errors.texts[0].starts_with(path + ":")) << errors.texts[0];
    EXPECT_NE(errors.texts[0].find(c.reason), std::string::npos) << errors.texts[0];
    EXPECT_EQ(errors.texts[0].find('\n'), std::string::npos);
  }
  std::string const outer =
      folder.write("outer.kv", std::string(HEADER) + "Separator { File { name cut.stl } }");
  ReadErrors errors;
  ASSERT_TRUE(io_test::readFile(outer));
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_TRUE(errors.texts[0].starts_with(folder / "cut.stl:")) << errors.texts[0];
  EXPECT_NE(errors.texts[0].find("included by " + outer), std::string::npos) << errors.texts[0];
}

TEST(ForeignFormatsModule, IsNamedWhenItIsMissing) {
  ReadErrors errors;
  EXPECT_FALSE(io_test::readFile(MODELS + "house.obj"));
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_EQ(errors.texts[0], MODELS + "house.obj: the format 'obj' needs the module \"foreign_formats\"");
}

TEST_F(ForeignFiles, ModelsNestedDeepDoNotExhaustTheStack) {
  TemporaryFolder const folder;
  constexpr int DEPTH = 50000;
  std::string nodes;
  for (int i = 0; i < DEPTH; ++i) {
    nodes += i + 1 < DEPTH ? "{\"children\":[" + std::to_string(i + 1) + "]},\n" : "{\"name\":\"lowest\"}";
  }
  std::string const chain = folder.write(
      "chain.gltf",
      R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[)" + nodes + "]}");
  SoRef<SoNode> const root = io_test::readFile(chain);
  ASSERT_TRUE(root);
  EXPECT_EQ(pathsTo<SoGroup>(root, "lowest").size(), 1u);
  ReadErrors errors;
  EXPECT_FALSE(io_test::readFile(folder.write("brackets.gltf", std::string(400000, '['))));
  EXPECT_FALSE(io_test::readFile(folder.write(
      "circle.gltf",
      R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"children":[1]},{"children":[0]}]})")));
  EXPECT_EQ(errors.texts.size(), 2u);
}

// Cut short and damaged at random: read, or refused with a reason.
// Files that end too early are what happens to people. Bytes changed at random bring Assimp itself down here and there.
TEST_F(ForeignFiles, ModelsCutShortAreReadOrRefused) {
  TemporaryFolder const folder;
  std::filesystem::copy(MODELS, folder / "models");
  int refused = 0;
  for (char const* name : {"quads.gltf", "quads.glb", "house.obj", "corner.stl", "corner-binary.stl", "square.ply",
                           "square-binary.ply", "tower.dae", "sail.fbx", "house.mtl"}) {
    std::string const text = fileText(MODELS + name);
    bool const isPart = std::string(name) == "house.mtl";
    for (std::size_t part = 0; part < 25; ++part) {
      std::string const path = folder.write(std::string("models/") + name, text.substr(0, text.size() * part / 25));
      ReadErrors errors;
      SoRef<SoNode> const root = io_test::readFile(isPart ? folder / "models/house.obj" : path);
      if (root) {
        SoGetBoundingBoxAction bounds{SbViewportRegion(100, 100)};
        bounds.apply(root);
      } else {
        EXPECT_EQ(errors.texts.size(), 1u) << name << ", " << part << " of 25";
        ++refused;
      }
    }
    std::filesystem::copy(MODELS + name, folder / (std::string("models/") + name),
                          std::filesystem::copy_options::overwrite_existing);
  }
  EXPECT_GT(refused, 50);
}
