// References from files to files: where they are looked for, and what is said when they are bad.

#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbImageWriter.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoImageBackground.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "node_helpers.h"

using namespace node_test;
using io_test::HEADER;
using io_test::ReadErrors;
using io_test::TemporaryFolder;

namespace {

template <class T> std::vector<T*> nodesOf(SoNode* root) {
  SoSearchAction search;
  search.setType(T::getClassTypeId());
  search.setInterest(SoSearchAction::ALL);
  search.apply(root);
  std::vector<T*> nodes;
  for (auto const& path : search.getPaths()) nodes.push_back(static_cast<T*>(path->getTail()));
  return nodes;
}

std::string scene(std::string const& inside) { return std::string(HEADER) + "Separator { " + inside + " }"; }

} // namespace

TEST(NodesFileReferences, BesideTheIncludingFileComesBeforeTheSearchPath) {
  TemporaryFolder const folder;
  for (char const* name : {"a/b", "path"}) std::filesystem::create_directories(folder / name);
  folder.write("path/leaf.kv", scene("Cube { width 8 }"));
  folder.write("path/other.kv", scene("Cube { height 8 }"));
  folder.write("a/b/leaf.kv", scene("Cube { depth 8 }"));
  folder.write("a/b/middle.kv", scene("File { name leaf.kv } File { name other.kv }"));
  std::string const outer = folder.write("a/outer.kv", scene("File { name \"b/middle.kv\" }"));
  SoInput::addDirectoryLast(SbString(folder / "path"));
  ReadErrors errors;
  SoRef<SoNode> const root = io_test::readFile(outer);
  ASSERT_TRUE(root);
  EXPECT_TRUE(isNear(boundsOf(root), box(-1, -4, -4, 1, 4, 4)));
  EXPECT_TRUE(errors.texts.empty());
  // What was read from there goes on looking there.
  auto const files = nodesOf<SoFile>(root);
  ASSERT_EQ(files.size(), 3u);
  files[1]->reload();
  EXPECT_EQ(files[1]->getFullName().str(), folder / "a/b/leaf.kv");
  SoInput::removeDirectory(SbString(folder / "path"));
}

TEST(NodesFileReferences, EveryKindOfBadReferenceIsOneErrorThatNamesBothFiles) {
  TemporaryFolder const folder;
  std::filesystem::create_directories(folder / "folder");
  folder.write("broken.kv", std::string(HEADER) + "Separator { Cub { } }");
  folder.write("empty.kv", "");
  folder.write("unknown.kind", "neither here nor there");
  std::error_code ignored;
  std::filesystem::create_symlink(folder / "linked.kv", folder / "link.kv", ignored);
  std::pair<std::string, std::string> const cases[] = {
      {"missing.kv", "is not found"}, {"broken.kv", "Cub"},           {"empty.kv", "the file is empty"},
      {"folder", "Is a directory"},   {"unknown.kind", "the header"}, {"linked.kv", "includes itself"},
      {"link.kv", "includes itself"},
  };
  for (auto const& [name, reason] : cases) {
    bool const isSelf = reason == "includes itself";
    // Twice, and told once: the second node finds what the first one has found.
    std::string const outer =
        folder.write(isSelf ? "linked.kv" : "outer.kv", scene("Cube { } File { name " + name + " }"));
    ReadErrors errors;
    SoRef<SoNode> const root = io_test::readFile(outer);
    ASSERT_TRUE(root) << name;
    ASSERT_EQ(errors.texts.size(), 1u) << name;
    EXPECT_NE(errors.texts[0].find(outer), std::string::npos) << errors.texts[0];
    EXPECT_NE(errors.texts[0].find(name), std::string::npos) << errors.texts[0];
    EXPECT_NE(errors.texts[0].find(reason), std::string::npos) << errors.texts[0];
    auto const files = nodesOf<SoFile>(root);
    ASSERT_EQ(files.size(), 1u) << "the node stays";
    EXPECT_EQ(files[0]->getChildren()->getLength(), 0) << "and shows nothing";
    EXPECT_EQ(files[0]->name.getValue().str(), name);
  }
}

TEST(NodesFileReferences, FilesIncludedOftenAreReadAndComplainedAboutOnce) {
  TemporaryFolder const folder;
  // 2^30 places, 30 readings.
  for (int i = 0; i < 30; ++i) {
    std::string const next = std::to_string(i + 1) + ".kv";
    folder.write(std::to_string(i) + ".kv", scene("File { name " + next + " } File { name " + next + " }"));
  }
  folder.write("30.kv", std::string(HEADER) + "Separator { Wrong { } }");
  ReadErrors errors;
  SoRef<SoNode> const root = io_test::readFile(folder / "0.kv");
  ASSERT_TRUE(root);
  EXPECT_EQ(errors.texts.size(), 1u);
}

TEST(NodesFileReferences, InlinesKnowWhereTheyStemFromAndDoNotLoadThemselves) {
  TemporaryFolder const folder;
  std::filesystem::create_directories(folder / "sub");
  std::string const outer =
      folder.write("sub/outer.kv", scene("WWWInline { name part.kv } WWWInline { name outer.kv }"));
  folder.write("sub/part.kv", scene("Cube { }"));
  SoRef<SoNode> const root = io_test::readFile(outer);
  ASSERT_TRUE(root);
  SoWWWInline::setFetchURLCallBack([](SbString const& url, void*, SoWWWInline* node) {
    SbString name;
    if (SoRef<SoNode> const contents = SoDB::readIncluded(url, node->getIncluders(), name))
      node->setChildData(contents);
  });
  auto const inlines = nodesOf<SoWWWInline>(root);
  ASSERT_EQ(inlines.size(), 2u);
  ReadErrors errors;
  inlines[0]->requestChildrenFromURL();
  EXPECT_TRUE(inlines[0]->hasChildData());
  EXPECT_TRUE(errors.texts.empty());
  inlines[1]->requestChildrenFromURL();
  SoWWWInline::setFetchURLCallBack(nullptr);
  EXPECT_FALSE(inlines[1]->hasChildData());
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_NE(errors.texts[0].find("includes itself"), std::string::npos) << errors.texts[0];
}

TEST(NodesFileReferences, ImagesAreFoundBesideTheSceneAndMissingOnesNamedOnce) {
  TemporaryFolder const folder;
  std::filesystem::create_directories(folder / "sub");
  ASSERT_TRUE(SbImageWriter::write(folder / "sub/dot.png", SbImage(SbVec2i32(1, 1), 3, {255, 0, 0})).empty());
  folder.write("sub/inner.kv", scene("Texture2 { filename dot.png } Texture2 { filename none.png } "
                                     "Texture2 { filename none.png } ImageBackground { filename none.png } "
                                     "Texture2 { filename inner.kv }"));
  std::string const outer = folder.write("outer.kv", scene("File { name \"sub/inner.kv\" }"));
  ReadErrors errors;
  SoRef<SoNode> const root = io_test::readFile(outer);
  ASSERT_TRUE(root);
  auto const textures = nodesOf<SoTexture2>(root);
  ASSERT_EQ(textures.size(), 4u);
  EXPECT_TRUE(errors.texts.empty()) << "nobody has looked at them yet";
  EXPECT_FALSE(textures[0]->getImage().isEmpty());
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(textures[1]->getImage().isEmpty());
    EXPECT_TRUE(textures[2]->getImage().isEmpty());
    EXPECT_TRUE(nodesOf<SoImageBackground>(root).at(0)->getImage().isEmpty());
  }
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_NE(errors.texts[0].find("none.png"), std::string::npos);
  EXPECT_TRUE(errors.texts[0].starts_with(folder / "sub/inner.kv")) << errors.texts[0];
  EXPECT_TRUE(textures[3]->getImage().isEmpty());
  EXPECT_EQ(errors.texts.size(), 2u) << "no image at all";
}
