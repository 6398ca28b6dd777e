// The process that reads models: what it may do to the one that waits for it.

#include <random>

#include "foreign_formats_helpers.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/io/SoSearchPath.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"

using namespace model_test;
using io_test::fileText;

namespace {

class ForeignProcess : public ForeignFormats {
 protected:
  void TearDown() override {
    SoPreferences::removeValue("KSV_FOREIGN_READER");
    SoPreferences::removeValue("KSV_FOREIGN_READER_SECONDS");
  }
};

/// The only error of reading a model by a shell script.
std::string faultBy(TemporaryFolder const& folder, std::string const& script) {
  std::string const program = folder.write("reader", "#!/bin/sh\n" + script + "\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  SoPreferences::setValue("KSV_FOREIGN_READER", program);
  ReadErrors errors;
  EXPECT_FALSE(io_test::readFile(MODELS + "square.ply"));
  EXPECT_EQ(errors.texts.size(), 1u);
  return errors.texts.empty() ? "" : errors.texts[0];
}

} // namespace

TEST_F(ForeignProcess, HoweverTheReaderEndsItIsOneReadError) {
  TemporaryFolder const folder;
  std::pair<char const*, char const*> const cases[] = {
      {"kill -SEGV $$", "failed (signal 11): the file is damaged"},
      {"kill -XCPU $$", "reading takes more than 60 seconds"},
      {"exit 3", "failed (status 3)"},
      {"echo 'f no such thing' >&3", "no such thing"},
      {"(echo; echo p; echo p much; echo x y) >&3", "failed (status 0)"},
  };
  for (auto const& [script, reason] : cases) {
    std::string const text = faultBy(folder, script);
    EXPECT_NE(text.find(reason), std::string::npos) << script << ": " << text;
  }
}

TEST_F(ForeignProcess, ModelsAreTheSameWithoutIt) {
  for (char const* name : {"quads.glb", "house.obj", "tower.dae", "sail.fbx", "points.ply"}) {
    SoPreferences::removeValue("KSV_FOREIGN_READER");
    SoRef<SoNode> const apart = readModel(name);
    SoPreferences::setValue("KSV_FOREIGN_READER", "none");
    SoRef<SoNode> const here = readModel(name);
    ASSERT_TRUE(apart && here);
    EXPECT_EQ(io_test::writeText(apart), io_test::writeText(here)) << name;
  }
}

TEST_F(ForeignProcess, TheSearchPathReachesIt) {
  TemporaryFolder const folder, elsewhere;
  std::filesystem::copy(MODELS + "quads.gltf", folder / "quads.gltf");
  std::filesystem::copy(MODELS + "quads.bin", elsewhere / "quads.bin");
  SoSearchPath::addFirst(SbString(elsewhere / ""));
  SoRef<SoNode> const root = io_test::readFile(folder / "quads.gltf");
  SoSearchPath::remove(SbString(elsewhere / ""));
  ASSERT_TRUE(root);
  EXPECT_EQ(nodesOf<SoIndexedFaceSet>(root).size(), 2u);
}

// Such files bring the libraries behind it down now and then.
TEST_F(ForeignProcess, ModelsDamagedAtRandomAreReadOrRefused) {
  SoPreferences::setValue("KSV_FOREIGN_READER_SECONDS", "2");
  TemporaryFolder const folder;
  std::mt19937 random(20);
  int refused = 0;
  for (char const* name : {"tower.dae", "sail.fbx", "square-binary.ply", "quads.glb"}) {
    for (int i = 0; i < 15; ++i) {
      std::string text = fileText(MODELS + name);
      for (int k = 0; k < 8; ++k) text[random() % text.size()] = static_cast<char>(random());
      ReadErrors errors;
      SoRef<SoNode> const root = io_test::readFile(folder.write(name, text));
      if (!root) ++refused;
      EXPECT_TRUE(root || errors.texts.size() == 1) << name << " " << i;
    }
  }
  EXPECT_GT(refused, 10);
}
