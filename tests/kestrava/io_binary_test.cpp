// The binary form: it says what the text says, and no data can make reading it go wrong.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <random>
#include <set>

#include "kestrava/base/SoPath.h"
#include "kestrava/io/SoGraphForm.h"
#include "kestrava/io/SoValueIO.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoUnknownNode.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

/// ASCII to binary to ASCII; answers the binary form.
std::string throughBytes(SoNode* root, std::string const& what) {
  ReadErrors const errors;
  std::string const text = writeText(root);
  std::string bytes = writeBytes(root);
  SoRef<SoNode> const back = readText(bytes);
  EXPECT_TRUE(back) << what << ": " << (errors.texts.empty() ? "" : errors.texts[0]);
  if (!back) return {};
  EXPECT_TRUE(writeText(back) == text) << what << " has changed on the way";
  EXPECT_TRUE(writeBytes(back) == bytes) << what << " gives other bytes";
  return bytes;
}

std::vector<std::string> sceneFiles() {
  std::vector<std::string> files;
  for (std::string const& folder : {scenesFolder(), std::string(VANTLE_SOURCE_DIR "/scenes"),
                                    std::string(VANTLE_SOURCE_DIR "/tests/data")}) {
    if (folder.empty()) continue;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
      std::string const extension = entry.path().extension();
      if (extension == ".kv" || extension == ".kvz") files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(BinaryScenes, EveryFileComesBackAsTheSameText) {
  std::vector<std::string> const files = sceneFiles();
  for (std::string const& file : files) throughBytes(readFile(file), file);
  EXPECT_GE(files.size(), 2u);
  if (scenesFolder().empty()) GTEST_SKIP() << "the folder with the large scenes is not here";
}

TEST(BinaryScenes, FilesCompressedAndNot) {
  SoRef<SoNode> const root = readFile(VANTLE_SOURCE_DIR "/tests/data/sharing.kv");
  std::string const text = writeText(root);
  TemporaryFolder const folder;
  for (bool packed : {false, true}) {
    SoWriteAction action;
    action.getOutput()->setBinary(true);
    action.getOutput()->setCompression(packed);
    std::string const path = folder / (packed ? "packed.kvz" : "plain.kv");
    ASSERT_TRUE(action.getOutput()->openFile(SbString(path)));
    action.apply(root);
    ASSERT_TRUE(action.getOutput()->closeFile());
    EXPECT_TRUE(fileText(path).starts_with(packed ? "\x1f\x8b" : "#Kestrava V1.0 binary\n"));
    SoInput in;
    ASSERT_TRUE(in.openFile(path.c_str()));
    EXPECT_TRUE(in.isBinary());
    EXPECT_EQ(in.getHeader(), SoOutput::getDefaultBinaryHeader());
    SoRef<SoNode> const back(SoDB::readAll(&in));
    ASSERT_TRUE(back);
    EXPECT_EQ(writeText(back), text);
  }
  SoInput::addInMemoryTextFile("io_test_binary.kv", SbString(writeBytes(root)));
  EXPECT_EQ(writeText(readFile("io_test_binary.kv")), text);
}

TEST(BinaryScenes, ArraysAreWholeAndAligned) {
  std::string text = "Coordinate3 { point [ ";
  for (int i = 0; i < 1000; ++i) text += std::to_string(i) + " 0.25 -1, ";
  SoRef<SoNode> const root = readText("Separator { Label { label \"odd\" } " + text + "] } }");
  std::string const bytes = throughBytes(root, "the array");
  std::vector<float> values;
  for (int i = 0; i < 1000; ++i) values.insert(values.end(), {static_cast<float>(i), 0.25f, -1.f});
  std::string_view const block(reinterpret_cast<char const*>(values.data()), values.size() * sizeof(float));
  std::size_t const at = bytes.find(block);
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(at % alignof(float), 0u);
  EXPECT_EQ(bytes.find("Coordinate3"), bytes.rfind("Coordinate3")) << "a name is written once";
}

TEST(BinaryScenes, DepthAndSharingCostLittle) {
  constexpr int LEVELS = 30'000;
  std::string text;
  for (int i = 0; i < LEVELS; ++i) text += "Group { ";
  for (int i = 0; i < LEVELS; ++i) text += "} ";
  throughBytes(readText(text), "the deep graph");
  text = "DEF n0 Cube { }";
  for (int i = 1; i <= 40; ++i) {
    text = "DEF n" + std::to_string(i) + " Group { " + text + " USE n" + std::to_string(i - 1) + " }";
  }
  EXPECT_LT(throughBytes(readText(text), "the chain of doublings").size(), 5'000u);
}

TEST(BinaryScenes, PathsStayInTheirScene) {
  SoRef<SoNode> const root = readText(
      "DEF scene Separator { DEF first EventCallback { path Path { USE scene [ 1, 0 ] } } Group { Cube { } }"
      " EventCallback { path Path { Group { Sphere { } } [ 0 ] } } EventCallback { path NULL }"
      " DEF last Group { EventCallback { path Path { USE last [ 0 ] } } }"
      " IndexedFaceSet { vertexProperty DEF held VertexProperty { } } EventCallback { path Path { USE scene "
      "[ 5, -1 ] } } }");
  ASSERT_TRUE(root);
  throughBytes(root, "the paths");
  for (std::string const& form : {writeText(root), writeBytes(root)}) {
    SoRef<SoNode> const back = readText(form);
    auto* const scene = static_cast<SoSeparator*>(back.get());
    auto pathOf = [scene](int child) {
      return static_cast<SoEventCallback*>(scene->getChild(child))->path.getValue();
    };
    EXPECT_EQ(pathOf(0)->getHead(), scene);
    EXPECT_EQ(pathOf(0)->getLength(), 3);
    EXPECT_EQ(pathOf(2)->getTail()->getTypeId().getName().str(), "Sphere");
    EXPECT_FALSE(pathOf(3));
    EXPECT_EQ(pathOf(6)->getTail()->getName().str(), "held");
    // Of a part of the scene only what lies in it is written, and it can be read.
    SoNode* const last = scene->getChild(4);
    EXPECT_NE(writeText(last).find("path Path { USE last 0 }"), std::string::npos) << writeText(last);
    SoRef<SoNode> const first(scene->getChild(0));
    EXPECT_NE(writeText(first).find("path NULL"), std::string::npos) << writeText(first);
    EXPECT_TRUE(readText(writeBytes(first)));
    // A path of this kind holds the scene that holds it.
    for (int child : {0, 4, 6}) {
      SoNode* node = scene->getChild(child);
      if (child == 4) node = static_cast<SoGroup*>(node)->getChild(0);
      static_cast<SoEventCallback*>(node)->path.setValue(nullptr);
    }
  }
  auto* const scene = static_cast<SoSeparator*>(root.get());
  for (int child : {0, 6}) static_cast<SoEventCallback*>(scene->getChild(child))->path.setValue(nullptr);
  auto* const last = static_cast<SoGroup*>(scene->getChild(4));
  static_cast<SoEventCallback*>(last->getChild(0))->path.setValue(nullptr);
}

/// Words of the binary form, as a file holds them.
class Words {
 public:
  Words() {
    m_out.setBuffer();
    m_out.setBinary(true);
    m_out.writeHeader();
    m_out.align(4);
    m_out.write(SoGraphWords::VERSION);
  }
  Words& put(SoGraphWords::Kind kind, std::uint32_t number = 0) {
    m_out.align(4);
    m_out.write(number << SoGraphWords::KIND_BITS | kind);
    return *this;
  }
  Words& name(char const* name) {
    m_out.writeName(name);
    return *this;
  }
  Words& number(std::uint32_t number) {
    m_out.write(number);
    return *this;
  }
  Words& type(char const* type, std::vector<std::pair<char const*, char const*>> const& fields = {}) {
    name(type).number(static_cast<std::uint32_t>(fields.size()));
    for (auto const& [fieldName, fieldType] : fields) name(fieldName).name(fieldType);
    return *this;
  }
  std::string take() { return m_out.takeBuffer(); }

 private:
  SoOutput m_out;
};

TEST(BinaryFaults, SayWhatIsWrongAndWhere) {
  using namespace SoGraphWords;
  SoDebugError::setHandlerCallback([](SoError const*, void*) {});
  struct Case {
    std::string bytes;
    char const* message;
  };
  std::string const header = SoOutput::getDefaultBinaryHeader().str() + "\n";
  for (Case const& c : std::initializer_list<Case>{
           {header, "22: the data ends too early"},
           {header + std::string("\0\0\2\0\0\0", 6),
            "28: the binary form is of version 2, and only version 1 can be read"},
           {Words().take(), "28: the data ends too early"},
           {Words().put(END).put(END).take(), "32: there is more data than the scene"},
           {Words().put(NONE).take(), "32: expected a node, found null"},
           {Words().put(NODE, 7).take(), "32: there is no class of the number 7"},
           {Words().put(NODE).number(4).take(), "36: there is no name of the number 4"},
           {Words().put(NODE).name("Cube").number(1 << 20).take(),
            "48: a count of 1048576 is more than the data can hold"},
           {Words().put(NODE).type("Shape").put(END).take(),
            "52: there are no nodes of the type 'Shape' itself"},
           {Words().put(NODE).type("New", {{"a", "SFWeird"}}).put(END).take(),
            "76: a field 'a' of type 'SFWeird' can not be declared"},
           {Words().put(NODE).type("Cube").put(VALUE, 3).take(), "52: Cube has no field of the number 3"},
           {Words().put(NODE).type("Cube", {{"wide", "SFFloat"}}).put(VALUE).take(),
            "80: 'wide' is not a field of Cube"},
           {Words().put(NODE).type("Cube", {{"width", "SFInt32"}}).put(VALUE).take(),
            "84: the field 'width' of Cube is of type SFFloat, not SFInt32"},
           {Words().put(NODE).type("Cube").put(NODE).take(), "52: a child stands in Cube, which takes none"},
           {Words().put(NODE).type("Group").put(NONE).take(), "56: a null child stands in Group"},
           {Words().put(NODE).type("Group").put(PATH).take(), "56: expected a node"},
           {Words().put(DEFINE).put(NODE).type("Group").put(USE).take(),
            "60: the node '0' would contain itself"},
           {Words().put(NODE).type("Group").put(USE).take(), "56: there is no node of the number 0"},
           {Words().put(NODE).type("Group").put(USE, 5).take(), "56: there is no node of the number 5"},
           {Words().put(DEFINE).put(NODE).type("Cube").put(END).put(DEFINE).put(NODE).put(END).take(),
            "60: the node 0 is defined twice"},
           {Words()
                .put(NODE)
                .type("Cube", {{"width", "SFFloat"}})
                .put(CONNECTED)
                .put(USE)
                .name("x")
                .put(END)
                .put(END)
                .take(),
            "88: a node is referred to that is not in the file"},
       }) {
    TemporaryFolder const folder;
    std::string const path = folder.write("scene.kv", c.bytes);
    ReadErrors const errors;
    EXPECT_FALSE(readFile(path)) << c.message;
    ASSERT_EQ(errors.texts.size(), 1u) << c.message;
    EXPECT_EQ(errors.texts[0], path + ":" + c.message);
  }
  SoDebugError::setHandlerCallback(nullptr);
}

TEST(BinaryScenes, TypesThatAreNotKnownAreKept) {
  using namespace SoGraphWords;
  std::string const bytes = Words()
                                .put(NODE)
                                .type("Later", {{"size", "SFFloat"}, {"mode", "SFEnum"}, {"inner", "SFNode"}})
                                .put(VALUE, 1)
                                .name("ROUND")
                                .put(VALUE, 2)
                                .put(NODE, 1)
                                .type("Cube")
                                .put(END)
                                .put(IGNORED, 0)
                                .put(NODE, 1)
                                .put(END)
                                .put(END)
                                .put(END)
                                .take();
  SoRef<SoNode> const root = readText(bytes);
  ASSERT_TRUE(root);
  EXPECT_EQ(
      writeText(static_cast<SoGroup*>(root.get())->getChild(0)),
      "#Kestrava V1.0 ascii\n\nLater {\n  fields [ SFFloat size, SFEnum mode, SFNode inner ]\n  size ~\n"
      "  mode ROUND\n  inner Cube { }\n  Cube { }\n}\n");
  throughBytes(root, "the unknown type");
}

TEST(BinaryFaults, NothingIsAllocatedThatWasNotRead) {
  using namespace SoGraphWords;
  rusage before{}, after{};
  getrusage(RUSAGE_SELF, &before);
  std::vector<std::pair<char const*, char const*>> points{{"point", "MFVec3f"}};
  std::string const counted =
      Words().put(NODE).type("Coordinate3", points).put(VALUE).number(300'000'000).take();
  // Each word would make a node of a thousand fields.
  Words many;
  std::vector<std::string> names;
  std::vector<std::pair<char const*, char const*>> fields;
  for (int i = 0; i < 1000; ++i) names.push_back("f" + std::to_string(i));
  for (std::string const& name : names) fields.emplace_back(name.c_str(), "SFFloat");
  many.put(NODE).type("Later", fields).put(END);
  for (int i = 0; i < 20'000; ++i) many.put(NODE).put(END);
  TemporaryFolder const folder;
  ReadErrors const errors;
  EXPECT_FALSE(readFile(folder.write("counted.kv", counted)));
  EXPECT_FALSE(readFile(folder.write("many.kv", many.take())));
  ASSERT_EQ(errors.texts.size(), 2u);
  EXPECT_NE(errors.texts[0].find("a count of 300000000 is more than the data can hold"), std::string::npos);
  EXPECT_NE(errors.texts[1].find("too many fields of nodes of unknown types"), std::string::npos);
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 << 10); // KB
}

TEST(BinaryFaults, EveryCutIsTold) {
  std::string const bytes = writeBytes(readFile(VANTLE_SOURCE_DIR "/tests/data/sharing.kv"));
  for (std::size_t length = 22; length < bytes.size(); ++length) {
    ReadErrors const errors;
    ASSERT_FALSE(readText(std::string_view(bytes).substr(0, length))) << length;
    ASSERT_EQ(errors.texts.size(), 1u) << length;
  }
}

TEST(BinaryFaults, MutatedScenesNeverCrash) {
  std::vector<std::string> scenes;
  for (std::string const& file : sceneFiles()) {
    if (SoRef<SoNode> const root = readFile(file)) scenes.push_back(writeBytes(root));
    // Large scenes say nothing that small ones do not.
    if (scenes.back().size() > 200'000) scenes.pop_back();
  }
  ASSERT_FALSE(scenes.empty());
  std::mt19937 random(20240611);
  auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  SoDebugError::setHandlerCallback([](SoError const*, void*) {});
  int read = 0;
  std::set<std::string> faults;
  for (int round = 0; round < 4000; ++round) {
    std::string bytes = scenes[below(scenes.size())];
    std::size_t const start = SoOutput::getDefaultBinaryHeader().str().size() + 1;
    for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
      std::size_t const at = start + below(bytes.size() - start);
      switch (below(6)) {
        case 0:
          bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
          break;
        case 1:
          bytes[at] = static_cast<char>(random());
          break;
        case 2:
          bytes.resize(at + 1);
          break;
        case 3:
          bytes.erase(at & ~std::size_t{3}, 4 * (1 + below(8)));
          break;
        case 4:
          bytes.insert(at & ~std::size_t{3},
                       bytes.substr(below(bytes.size()) & ~std::size_t{3}, 4 * (1 + below(50))));
          break;
        default:
          bytes.replace(at & ~std::size_t{3}, 4, std::string("\xff\xff\xff\x7f", 4));
          break;
      }
    }
    ReadErrors const errors;
    SoRef<SoNode> const root = readText(bytes);
    if (!root) {
      ASSERT_FALSE(errors.texts.empty()) << round;
      faults.insert(errors.texts.back().substr(0, 12));
      continue;
    }
    ++read;
    if (read % 4 != 0) continue;
    // What could be read can be written in either form, and then is stable.
    std::string const written = writeText(root);
    SoRef<SoNode> const fromText = readText(written), fromBytes = readText(writeBytes(root));
    ASSERT_TRUE(fromText && fromBytes) << round << written;
    ASSERT_TRUE(writeText(fromText) == written) << round;
    ASSERT_TRUE(writeText(fromBytes) == written) << round;
  }
  SoDebugError::setHandlerCallback(nullptr);
  EXPECT_GT(read, 100) << "mutations are too coarse to test anything";
  EXPECT_GT(faults.size(), 5u) << "they all fail alike";
}

} // namespace
