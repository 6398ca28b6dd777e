// Whole scenes through reading and writing: what is written reads back as the same graph and the same text.

#include <gtest/gtest.h>
#include <zlib.h>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/nodes/SoUnknownNode.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

SoSeparator* asSeparator(SoNode* node) { return dynamic_cast<SoSeparator*>(node); }

/// Reads, writes, reads and writes; answers the first text, having compared it to the second.
std::string roundTrip(std::string const& path) {
  ReadErrors const errors;
  SoRef<SoNode> const first = readFile(path);
  EXPECT_TRUE(first) << path;
  if (!first) return {};
  std::string const text = writeText(first.get());
  TemporaryFolder const folder;
  SoRef<SoNode> const second = readFile(folder.write("again.kv", text));
  EXPECT_TRUE(second) << path;
  if (second) {
    EXPECT_EQ(writeText(second.get()), text) << path;
  }
  EXPECT_TRUE(errors.texts.empty()) << errors.texts.at(0);
  return text;
}

TEST(SceneFiles, RealScenesComeBackByteForByte) {
  if (scenesFolder().empty()) GTEST_SKIP() << "the folder with the large scenes is not here";
  int scenes = 0;
  for (auto const& entry : std::filesystem::directory_iterator(scenesFolder())) {
    std::string const extension = entry.path().extension();
    if (extension != ".kv" && extension != ".kvz") continue;
    ++scenes;
    roundTrip(entry.path());
  }
  EXPECT_GE(scenes, 6);
}

TEST(SceneFiles, OwnScenesComeBackByteForByte) {
  int scenes = 0;
  for (std::string const folder : {VANTLE_SOURCE_DIR "/tests/data", VANTLE_SOURCE_DIR "/scenes"}) {
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.path().extension() != ".kv") continue;
      ++scenes;
      roundTrip(entry.path());
    }
  }
  EXPECT_GE(scenes, 1);
}

TEST(SceneFiles, StructureIsKept) {
  SoRef<SoNode> const root = readFile(VANTLE_SOURCE_DIR "/tests/data/sharing.kv");
  SoSeparator* const scene = asSeparator(root.get());
  ASSERT_TRUE(scene);
  EXPECT_EQ(scene->getName().str(), "scene");
  auto* const wheel = asSeparator(scene->getChild(0));
  auto* const twin = asSeparator(scene->getChild(1));
  ASSERT_TRUE(wheel && twin);
  EXPECT_NE(wheel, twin);
  EXPECT_EQ(wheel->getName().str(), "wheel") << "the part from + on is no part of the name";
  EXPECT_EQ(twin->getName().str(), "wheel");
  EXPECT_TRUE(wheel->getChild(0)->getName().empty());
  EXPECT_EQ(twin->getChild(1), wheel) << "the name without a number is the first wheel";
  EXPECT_EQ(scene->getChild(2), twin);
  EXPECT_EQ(scene->getChild(3), twin->getChild(2));
  EXPECT_EQ(scene->getChild(4), wheel->getChild(0));

  auto* const choice = dynamic_cast<SoSwitch*>(scene->getChild(5));
  ASSERT_TRUE(choice);
  auto* const mover = dynamic_cast<SoTransform*>(choice->getChild(0));
  auto* const follower = dynamic_cast<SoTransform*>(choice->getChild(1));
  ASSERT_TRUE(mover && follower);
  EXPECT_TRUE(mover->rotation.isIgnored());
  EXPECT_FALSE(mover->translation.isIgnored());
  EXPECT_TRUE(mover->translation.isDefault());
  EXPECT_FALSE(mover->scaleFactor.isDefault());
  EXPECT_EQ(follower->rotation.getConnectedField(), &mover->rotation);
  EXPECT_EQ(follower->translation.getValue(), SbVec3f(-1, 0, INFINITY)) << "a source may be defined later";
  mover->rotation.setValue(SbRotation(SbVec3f(1, 0, 0), 1));
  EXPECT_EQ(follower->rotation.getValue(), SbRotation(SbVec3f(1, 0, 0), 1));

  auto vertexProperty = [&](int child) {
    return static_cast<SoSFNode*>(scene->getChild(child)->getField("vertexProperty"))->getValue();
  };
  EXPECT_TRUE(vertexProperty(6));
  EXPECT_EQ(vertexProperty(6), vertexProperty(7));

  auto* const unknown = dynamic_cast<SoUnknownNode*>(scene->getChild(8));
  ASSERT_TRUE(unknown);
  EXPECT_EQ(unknown->getTypeId().getName().str(), "UnknownFutureShape");
  EXPECT_EQ(unknown->getNumChildren(), 1);
  EXPECT_TRUE(unknown->getField("width")->isDefault());
  SbString text;
  unknown->getField("mode")->get(text);
  EXPECT_EQ(text.str(), "ROUND");
  unknown->getField("parts")->get(text);
  EXPECT_EQ(text.str(), "( LEFT | RIGHT )");
  auto* const others = dynamic_cast<SoMFNode*>(unknown->getField("others"));
  ASSERT_EQ(others->getNumValues(), 3);
  EXPECT_FALSE(others->getNode(0));
  EXPECT_EQ(others->getNode(1), wheel);

  auto* const kit = dynamic_cast<SoBaseKit*>(scene->getChild(12));
  ASSERT_TRUE(kit);
  SoNode* const material = kit->getPart("appearance.material", false);
  ASSERT_TRUE(material);
  EXPECT_EQ(kit->getPartString(material).str(), "appearance.material");
  SoNode* const entry = kit->getPart("childList[0]", false);
  ASSERT_TRUE(entry);
}

TEST(SceneFiles, WritingSaysOnlyWhatIsNotDefault) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const child = new SoTranslation;
  root->addChild(child);
  root->addChild(child);
  EXPECT_EQ(writeText(root.get()),
            "#Kestrava V1.0 ascii\n\nSeparator {\n  DEF +1 Translation { }\n  USE +1\n}\n");
  child->setName("a b");
  child->translation.setValue(SbVec3f(0, 0, 0));
  root->renderCulling.setIgnored(true);
  EXPECT_EQ(writeText(root.get()),
            "#Kestrava V1.0 ascii\n\nSeparator {\n  renderCulling ~\n  DEF a_b Translation {\n"
            "    translation 0 0 0\n  }\n  USE a_b\n}\n");
  // The name belongs to two nodes now, and one of them is referred to.
  auto* const other = new SoTranslation;
  root->addChild(other);
  other->setName("a_b");
  other->translation.connectFrom(&child->translation);
  root->removeChild(1);
  EXPECT_EQ(writeText(root.get()),
            "#Kestrava V1.0 ascii\n\nSeparator {\n  renderCulling ~\n  DEF a_b+1 Translation {\n"
            "    translation 0 0 0\n  }\n  DEF a_b Translation {\n    translation 0 0 0 = USE a_b+1 . translation\n  }\n}\n");
  // The source alone is not in the file.
  EXPECT_EQ(writeText(other), "#Kestrava V1.0 ascii\n\nDEF a_b Translation {\n  translation 0 0 0\n}\n");
}

TEST(SceneFiles, TopLevelNodesGetOneRoot) {
  SoRef<SoNode> root = readText("Separator { Cube { } }");
  EXPECT_EQ(asSeparator(root.get())->getNumChildren(), 1) << "a single Separator is the root itself";
  root = readText("Cube { }");
  ASSERT_EQ(asSeparator(root.get())->getNumChildren(), 1);
  root = readText("DEF a Cube { } # comment\n USE a, Separator { }");
  ASSERT_EQ(asSeparator(root.get())->getNumChildren(), 3);
  EXPECT_EQ(asSeparator(root.get())->getChild(0), asSeparator(root.get())->getChild(1));
  root = readText(" # nothing at all");
  EXPECT_EQ(asSeparator(root.get())->getNumChildren(), 0);
}

TEST(SceneFiles, TheLatestDefinitionCounts) {
  SoRef<SoNode> const root =
      readText("Separator { DEF a Cube { } USE a DEF a Separator { DEF a Sphere { } USE a } USE a }");
  auto* const scene = asSeparator(root.get());
  ASSERT_EQ(scene->getNumChildren(), 4);
  EXPECT_EQ(scene->getChild(0), scene->getChild(1));
  auto* const inner = asSeparator(scene->getChild(2));
  EXPECT_EQ(inner->getChild(0), inner->getChild(1));
  EXPECT_EQ(scene->getChild(3), inner->getChild(0));
}

TEST(SceneFiles, DepthCostsNoStack) {
  constexpr int LEVELS = 100'000;
  std::string text;
  for (int i = 0; i < LEVELS; ++i) text += "Group { ";
  for (int i = 0; i < LEVELS; ++i) text += "} ";
  SoRef<SoNode> const root = readText(text);
  ASSERT_TRUE(root);
  std::string const written = writeText(root.get());
  std::size_t groups = 0;
  for (std::size_t at = 0; (at = written.find("Group {", at)) != std::string::npos; ++at) ++groups;
  EXPECT_EQ(groups, LEVELS);
}

TEST(SceneFiles, SharingCostsNoTime) {
  // Each group holds the next one twice: 2^40 places.
  std::string text = "DEF n0 Cube { }";
  for (int i = 1; i <= 40; ++i) {
    text = "DEF n" + std::to_string(i) + " Group { " + text + " USE n" + std::to_string(i - 1) + " }";
  }
  SoRef<SoNode> const root = readText(text);
  ASSERT_TRUE(root);
  std::string const written = writeText(root.get());
  EXPECT_LT(written.size(), 10'000u);
  SoRef<SoNode> const again = readText(written);
  EXPECT_EQ(writeText(again.get()), written);
}

TEST(SceneFiles, ManyNodesMayShareAName) {
  std::string text = "Separator { ";
  for (int i = 0; i < 100'000; ++i) text += "DEF manyShareThis Group { }\n";
  SoRef<SoNode> root = readText(text + "}");
  auto* const scene = asSeparator(root.get());
  ASSERT_EQ(scene->getNumChildren(), 100'000);
  EXPECT_EQ(SoNode::getByName("manyShareThis"), scene->getChild(99'999));
  // In no order at all.
  for (int i = 0; i < 50'000; ++i) scene->getChild((i * 7919) % 100'000)->setName("other");
  scene->getChild(99'999)->setName("");
  EXPECT_TRUE(SoNode::getByName("manyShareThis"));
  root.reset();
  EXPECT_FALSE(SoNode::getByName("manyShareThis"));
  EXPECT_FALSE(SoNode::getByName("other"));
}

struct PercentInput : SoInput {
  void updateReadPercent(double percent) override { percents.push_back(percent); }
  std::vector<double> percents;
};

TEST(SceneFiles, ProgressRisesToTheEnd) {
  std::string body = HEADER;
  body += "Coordinate3 { point [\n";
  for (int i = 0; i < 300'000; ++i) body += std::to_string(i) + " 0.5 -1e3,\n";
  TemporaryFolder const folder;
  PercentInput in;
  ASSERT_TRUE(in.openFile(folder.write("long.kv", body + "] }").c_str()));
  SoRef<SoNode> const root(SoDB::readAll(&in));
  ASSERT_TRUE(root);
  EXPECT_GT(in.percents.size(), 20u);
  EXPECT_LE(in.percents.size(), 201u);
  EXPECT_TRUE(std::is_sorted(in.percents.begin(), in.percents.end()));
  EXPECT_GT(in.percents.front(), 0);
  EXPECT_EQ(in.percents.back(), 100);
}

}  // namespace
