// Files that are not as they should be: one clear message with file and line, and nothing left behind.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <zlib.h>

#include <random>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

std::string packed(std::string const& text) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
  std::string bytes(deflateBound(&stream, text.size()) + 100, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  deflate(&stream, Z_FINISH);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  return bytes;
}

/// The one message that reading the file gives, without the file's name.
std::string faultOf(std::string const& path) {
  ReadErrors const errors;
  EXPECT_FALSE(readFile(path)) << fileText(path).substr(0, 200);
  EXPECT_EQ(errors.texts.size(), 1u);
  if (errors.texts.empty()) return "none";
  EXPECT_TRUE(errors.texts[0].starts_with(path + ":")) << errors.texts[0];
  return errors.texts[0].substr(path.size() + 1);
}

std::string faultOfBytes(std::string const& bytes) {
  TemporaryFolder const folder;
  return faultOf(folder.write("scene.kv", bytes));
}

TEST(SceneFaults, HeaderAndFile) {
  TemporaryFolder const folder;
  EXPECT_EQ(faultOfBytes(""), "1: the file is empty");
  for (char const* form : {"ascii", "binary"}) {
    EXPECT_EQ(faultOfBytes(std::string("#Kestrava V2.0 ") + form + "\nCube { }"),
              "1: the file is of version 2.0, and only files of version 1.0 can be read");
  }
  EXPECT_EQ(faultOfBytes("Cube { }"), "1: expected the header \"#Kestrava V1.0 ascii\", found \"Cube { }\"");
  EXPECT_EQ(faultOfBytes(std::string(1'000'000, 'x')),
            "1: expected the header \"#Kestrava V1.0 ascii\", found \"" + std::string(40, 'x') + "...\"");
  EXPECT_EQ(faultOf(folder.path), " can not be read: Is a directory");
  EXPECT_EQ(faultOf("/dev/zero"), " can not be read: it is not a regular file");
  std::string const pipe = folder / "pipe";
  mkfifo(pipe.c_str(), 0600);
  EXPECT_EQ(faultOf(pipe), " can not be read: it is not a regular file");
  EXPECT_EQ(faultOf(folder / "missing.kv"), " can not be opened: No such file or directory");
  if (geteuid() != 0) {
    std::string const secret = folder.write("secret.kv", HEADER);
    chmod(secret.c_str(), 0);
    EXPECT_EQ(faultOf(secret), " can not be opened: Permission denied");
  }
  ReadErrors const errors;
  SoInput in;
  EXPECT_FALSE(in.openFile((folder / "missing.kv").c_str(), true));
  EXPECT_TRUE(in.getCurFileName().empty());
  EXPECT_FALSE(SoDB::readAll(&in));
  EXPECT_TRUE(errors.texts.empty()) << "that it is not found is all right here";
}

TEST(SceneFaults, Contents) {
  struct Case {
    char const* body;  // from line 2 on
    char const* message;
  };
  SoDebugError::setHandlerCallback([](SoError const*, void*) {});  // tells of refused values too
  for (Case const& c : std::initializer_list<Case>{
           {"Separator {\n  Cube { }\n\n", "4: expected '}' for the Separator of line 2, found the end of the file"},
           {"Separator {\n} }", "3: expected a node, found '}'"},
           {"Cube\n{ wide 2 }", "3: expected a field of Cube or '}', found 'wide'"},
           {"Cube { Sphere { } }", "2: expected a field of Cube or '}', found 'Sphere'"},
           {"Separator { [ }", "2: expected a field of Separator, a node or '}', found '['"},
           {"Separator {\n wide 2 }", "3: expected a field of Separator, a node or '}', found 'wide'"},
           {"Separator {\n\"Cube\" { } }",
            "3: expected a field of Separator, a node or '}', found the string \"Cube\""},
           {"Strange {\n a 1 }", "2: the type 'Strange' is not known, and its fields are not declared"},
           {"Strange {\n fields [ SFFloat a,\n SFWeird b ] }",
            "4: a field 'b' of type 'SFWeird' can not be declared"},
           {"Strange { fields [ SFFloat a SFFloat a ] }", "2: a field 'a' of type 'SFFloat' can not be declared"},
           {"Shape { }", "2: there are no nodes of the type 'Shape' itself"},
           {"SFFloat { }", "2: the type 'SFFloat' is not known, and its fields are not declared"},
           {"Cube ( )", "2: expected '{', found '('"},
           {"DEF only", "2: expected a type of nodes, found the end of the file"},
           {"USE nobody", "2: no node is defined as 'nobody'"},
           {"DEF a Separator {\n USE a }", "3: the node 'a' would contain itself"},
           {"DEF a Group { IndexedFaceSet {\n vertexProperty USE a } }", "3: the node 'a' would contain itself"},
           {"Cube { width\n big }", "3: expected a real number, found 'big'"},
           {"Cube { width 0x10 }", "2: expected a real number, found '0x10'"},
           {"Cube { width 1e400 }", "2: the number '1e400' is out of range"},
           {"Cube { width -3.5e38 }", "2: the number '-3.5e38' is out of range"},
           {"Cube { width }", "2: expected a real number, found '}'"},
           {"Switch { whichChild 1.5 }", "2: expected an integer, found '1.5'"},
           {"Switch { whichChild 2147483648 }", "2: the number '2147483648' is out of range"},
           {"Switch { whichChild -2147483649 }", "2: the number '-2147483649' is out of range"},
           {"Switch { whichChild 089 }", "2: expected an integer, found '089'"},
           {"Switch { whichChild 99999999999999999999 }", "2: the number '99999999999999999999' is out of range"},
           {"VertexProperty { orderedRGBA -1 }", "2: the number '-1' is out of range"},
           {"Separator { renderCulling\nMAYBE }", "3: expected one of ON, OFF, AUTO, found 'MAYBE'"},
           {"DirectionalLight { on yes }", "2: expected TRUE or FALSE, found 'yes'"},
           {"DirectionalLight { on TRUELY }", "2: expected TRUE or FALSE, found 'TRUELY'"},
           {"Coordinate3 { point [ 1 2 3,\n4 5 ] }", "3: expected a real number, found ']'"},
           {"Coordinate3 { point [ 1 2 3", "2: expected a real number, found the end of the file"},
           {"IndexedFaceSet { vertexProperty 5 }", "2: expected a node, USE or NULL, found '5'"},
           {"Info { string \"a\nb", "2: expected '\"' at the end of the string, found the end of the file"},
           {"Info { string }", "2: expected a string, found '}'"},
           {"Texture2 { image 4294967 2 3 0 }", "2: expected an integer, found '}'"},
           {"Texture2 { image 2 2 5 0 }", "2: an image of 2 x 2 pixels and 5 components is not possible"},
           {"Texture2 { image 1 1 1 0x100 }", "2: the number 256 does not fit in 1 byte"},
           {"SeparatorKit { appearance\nCube { } }", "3: the field 'appearance' of SeparatorKit takes no Cube"},
           {"Transform {\n translation = a }", "3: expected a node's name and field, found 'a'"},
           {"Transform {\n translation = a.b }", "3: no node is defined as 'a'"},
           {"DEF a Cube { } Transform {\n translation = a.b }", "3: 'b' is not a field of Cube"},
           {"DEF a Transform {\n translation = a.translation }",
            "3: the field 'translation' can not follow 'a.translation'"},
       }) {
    EXPECT_EQ(faultOfBytes(HEADER + std::string(c.body)), c.message) << c.body;
  }
  SoDebugError::setHandlerCallback(nullptr);
}

TEST(SceneFaults, LinesAreCountedInLongFiles) {
  std::string text = HEADER;
  text += "Coordinate3 { point [\n";
  for (int i = 0; i < 50'000; ++i) text += "1 2.5 3 # comment\n";
  EXPECT_EQ(faultOfBytes(text + "1 2 x ] }"), "50003: expected a real number, found 'x'");
  EXPECT_EQ(faultOfBytes(text + "]\n"),
            "50003: expected '}' for the Coordinate3 of line 2, found the end of the file");
  EXPECT_EQ(faultOfBytes(packed(text + "\n\nx ] }")), "50005: expected a real number, found 'x'");
}

TEST(SceneFaults, CompressedFiles) {
  std::string const text = HEADER + std::string("Separator { Cube { } }");
  TemporaryFolder const folder;
  EXPECT_TRUE(readFile(folder.write("plain-name.kv", packed(text)))) << "the content counts, not the name";
  EXPECT_TRUE(readFile(folder.write("two.kvz", packed(text.substr(0, 30)) + packed(text.substr(30)))));
  std::string whole = packed(text);
  std::set<std::string> messages;
  for (std::size_t length = 2; length < whole.size(); ++length) messages.insert(faultOfBytes(whole.substr(0, length)));
  EXPECT_EQ(messages.size(), 1u) << *messages.begin();
  EXPECT_TRUE(messages.begin()->ends_with(": the compressed data is cut short")) << *messages.begin();
  whole[whole.size() - 6] ^= 1;  // of the checksum
  EXPECT_NE(faultOfBytes(whole).find("the compressed data is damaged"), std::string::npos);
  EXPECT_NE(faultOfBytes(packed(text) + "garbage").find("the compressed data is damaged"), std::string::npos);
}

TEST(SceneFaults, NothingIsAllocatedThatWasNotRead) {
  rusage before{}, after{};
  // 64 MB of blanks in 64 KB, and counts that nothing follows.
  std::string const bomb = packed(HEADER + std::string(64 << 20, ' ') + "x");
  getrusage(RUSAGE_SELF, &before);
  EXPECT_EQ(faultOfBytes(bomb), "2: expected a node, found 'x'");
  EXPECT_EQ(faultOfBytes(HEADER + std::string("Texture2 { image 16000 16000 4 0x1")),
            "2: expected an integer, found the end of the file");
  EXPECT_EQ(faultOfBytes(HEADER + std::string("Texture2 { image 100000 100000 4 0x1")),
            "2: an image of 100000 x 100000 pixels and 4 components is not possible");
  SoInput in;
  in.setBuffer(std::string_view("\xff\xff\xff\xff\0\0\0\0", 8), true);
  std::vector<float> values;
  EXPECT_FALSE(SoReadValues(in, values));
  EXPECT_EQ(values.capacity(), 0u);
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 << 10);  // KB
}

TEST(SceneFaults, ManyLevelsOfFaultsLeaveNothing) {
  // Names tell whether a node is still there.
  std::string text = "DEF faultyRoot Separator { DEF faultyChild Cube { } IndexedFaceSet { vertexProperty DEF faultyHeld "
                     "VertexProperty { } } ";
  for (int i = 0; i < 1000; ++i) text += "DEF faultyGroup Group { Cube { } ";
  ReadErrors const errors;
  EXPECT_FALSE(readText(text + "oops"));
  EXPECT_EQ(errors.texts.size(), 1u);
  for (char const* name : {"faultyRoot", "faultyChild", "faultyHeld", "faultyGroup"}) {
    EXPECT_FALSE(SoNode::getByName(name)) << name;
  }
}

// Values that are no node-valued fields are the one place where reading is recursive.
TEST(SceneFaults, NodesInsideOfValuesAreLimited) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += "Odd { fields [ SFFieldContainer p ] p ";
  ReadErrors const errors;
  EXPECT_FALSE(readText(text));
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_EQ(errors.texts[0], "nodes inside of values are nested too deeply");
}

TEST(SceneFaults, MutatedScenesNeverCrash) {
  std::string const scene = fileText(VANTLE_SOURCE_DIR "/tests/data/sharing.kv");
  ASSERT_FALSE(scene.empty());
  std::vector<std::string> words;
  std::istringstream in(scene);
  for (std::string word; in >> word;) words.push_back(word);
  std::mt19937 random(20240607);
  auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  // What is found wrong must be found in what SoDebugError says as well, but need not be shown.
  SoDebugError::setHandlerCallback([](SoError const*, void*) {});
  int read = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = scene.substr(scene.find('\n'));
    for (std::size_t changes = 1 + below(2); changes > 0; --changes) {
      std::size_t const at = below(text.size());
      switch (below(6)) {
        case 0: text[at] = static_cast<char>(random()); break;
        case 1: text.erase(at, 1 + below(30)); break;
        case 2: text.insert(at, text.substr(below(text.size()), below(200))); break;
        case 3: text.insert(at, " " + words[below(words.size())] + " "); break;
        case 4: text.insert(at, 1, "{}[]\"#~=.+-0x\\("[below(14)]); break;
        default: text.resize(at + 1);
      }
    }
    ReadErrors const errors;
    SoRef<SoNode> const root = readText(text);
    ASSERT_EQ(errors.texts.size(), root ? 0u : 1u) << text;
    if (!root) continue;
    ++read;
    // What could be read can be written, and then is stable.
    std::string const written = writeText(root.get());
    SoRef<SoNode> const again = readText(written);
    ASSERT_TRUE(again) << written;
    ASSERT_EQ(writeText(again.get()), written) << text;
  }
  SoDebugError::setHandlerCallback(nullptr);
  EXPECT_GT(read, 100) << "mutations are too coarse to test anything";
}

}  // namespace
