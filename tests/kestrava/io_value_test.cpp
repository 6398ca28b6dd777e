// Texts of values, and the binary form of values.

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <random>

#include "kestrava/base/SoCpuBufferObject.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoSFArray.h"
#include "kestrava/fields/SoSFBufferObject.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoCylinder.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

std::string textOf(SoField const& field) {
  SbString text;
  field.get(text);
  return text.str();
}

std::unique_ptr<SoField> makeField(char const* type) {
  return std::unique_ptr<SoField>(static_cast<SoField*>(SoType::fromName(type).createInstance()));
}

TEST(FieldText, ComesBackForEveryType) {
  struct Case {
    char const* type;
    char const* given;
    char const* text;  // null: as given
  };
  for (Case const& c : std::initializer_list<Case>{
           {"SFBool", "1", "TRUE"},
           {"SFBool", "FALSE", nullptr},
           {"MFBool", "[ TRUE, 0 ]", "[ TRUE, FALSE ]"},
           {"SFInt32", "-0x7f", "-127"},
           {"SFInt32", "-2147483648", nullptr},
           {"MFInt32", "[]", "[ ]"},
           {"MFInt32", "[ 017 0xFF, +3 ]", "[ 15, 255, 3 ]"},
           {"SFUInt32", "4294967295", nullptr},
           {"MFUInt32", "7", nullptr},
           {"SFShort", "-32768", nullptr},
           {"MFShort", "[ 1, 2 ]", nullptr},
           {"SFUShort", "65535", nullptr},
           {"MFUShort", "[ 1, 2 ]", nullptr},
           {"SFFloat", "0.1000", "0.1"},
           {"SFFloat", "+1E2", "100"},
           {"SFFloat", "-inf", nullptr},
           {"SFFloat", "nan", nullptr},
           {"SFFloat", "1e-50", "0"},
           {"SFFloat", ".5", "0.5"},
           {"SFFloat", "5.", "5"},
           {"MFFloat", "[ 1, -0, 3.4028235e+38, 1e-45 ]", nullptr},
           {"SFDouble", "0.1", nullptr},
           {"MFDouble", "[ 1e+300, 2 ]", nullptr},
           {"SFTime", "1.5", nullptr},
           {"MFTime", "[ 1, 2 ]", nullptr},
           {"SFVec2f", "1 2", nullptr},
           {"MFVec2f", "[ 1 2, 3 4 ]", nullptr},
           {"SFVec3f", "1,2,3", "1 2 3"},
           {"MFVec3f", "[ 1 2 3 ]", "1 2 3"},
           {"SFVec4f", "1 2 3 4", nullptr},
           {"MFVec4f", "[ 1 2 3 4, 5 6 7 8 ]", nullptr},
           {"SFVec2s", "1 -2", nullptr},
           {"MFVec2s", "1 -2", nullptr},
           {"SFVec3s", "1 2 3", nullptr},
           {"SFVec2i32", "1 -2", nullptr},
           {"MFVec2i32", "[ 1 2, 3 4 ]", nullptr},
           {"SFVec3d", "0.1 0.2 0.3", nullptr},
           {"SFColor", "0.1 0.2 0.3", nullptr},
           {"MFColor", "[ 1 0 0, 0 1 0 ]", nullptr},
           {"SFColorRGBA", "1 0 0 0.5", nullptr},
           {"SFRotation", "0 0 2 -7", "0 0 1 -7"},
           {"MFRotation", "[ 1 0 0 0.1, 0 1 0 3 ]", nullptr},
           {"SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1", nullptr},
           {"SFPlane", "0 1 0 3.5", nullptr},
           {"MFPlane", "[ 0 1 0 3.5, 1 0 0 2 ]", nullptr},
           {"SFBox2f", "0 0 1 1", nullptr},
           {"SFBox2s", "0 0 1 1", nullptr},
           {"SFBox3f", "0 0 0 1 1 1", nullptr},
           {"SFBox3s", "0 0 0 1 1 1", nullptr},
           {"SFString", "plain", "\"plain\""},
           {"SFString", "\"a \\\"b\\\" \\\\ \\n, # { line\n\u00e9\"", "\"a \\\"b\\\" \\\\ \\\\n, # { line\n\u00e9\""},
           {"MFString", "[ \"\", b ]", "[\n  \"\",\n  \"b\"\n]"},
           {"SFName", "word", "\"word\""},
           {"MFName", "[ a, b ]", "[ \"a\", \"b\" ]"},
           {"SFImage", "2 2 1 0x00 0xff 0x1 16", "2 2 1 0x00 0xff 0x01 0x10"},
           {"SFImage", "1 1 4 0xdeadbeef", nullptr},
           {"SFImage", "DEPTH 2 1 1 2 0x0102 0x0304", nullptr},
           {"SFImage", "0 0 0", nullptr},
           {"SFArray", "2 2 1 0 0.5 1 1.5", nullptr},
           {"SFNode", "NULL", nullptr},
           {"SFNode", "Cube { width 3 }", "Cube {\n  width 3\n}"},
           {"MFNode", "[ NULL, DEF a Cube { }, USE a ]", "[ NULL, DEF a Cube { }, USE a ]"},
           {"MFUniformShaderParameter", "Cube { }", nullptr},
           {"MFInstanceParameter", "[ ]", nullptr},
           {"SFFieldContainer", "Cube { }", nullptr},
           {"SFBufferObject", "NULL", nullptr},
           {"SFBufferObject", "6 0x01020304 0x0506", nullptr},
           {"SFPath", "NULL", nullptr},
           {"SFPath", "Path { Group { Cube { } Group { Sphere { } } } [ 1, 0 ] }",
            "Path { Group {\n  Cube { }\n  Group {\n    Sphere { }\n  }\n} [ 1, 0 ] }"},
           {"MFPath", "[ ]", nullptr},
           {"SFTrigger", "", nullptr},
       }) {
    std::unique_ptr<SoField> const field = makeField(c.type);
    ASSERT_TRUE(field) << c.type;
    SbString reason;
    ASSERT_TRUE(field->set(c.given, &reason)) << c.type << " " << c.given << ": " << reason.c_str();
    std::string const expected = c.text ? c.text : c.given;
    EXPECT_EQ(textOf(*field), expected) << c.type;
    ASSERT_TRUE(field->set(expected.c_str(), &reason)) << c.type << ": " << reason.c_str();
    EXPECT_EQ(textOf(*field), expected) << c.type;
    EXPECT_FALSE(field->set(expected == "" ? "x" : (expected + " }").c_str(), &reason)) << c.type;
  }
}

TEST(FieldText, EveryFieldTypeHasOne) {
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoField::getClassTypeId()) || !type.canCreateInstance()) continue;
    std::unique_ptr<SoField> const field = makeField(type.getName().c_str());
    std::string const text = textOf(*field);
    SbString reason;
    EXPECT_TRUE(field->set(text.c_str(), &reason)) << type.getName().c_str() << ": " << text << ": " << reason.c_str();
    EXPECT_EQ(textOf(*field), text) << type.getName().c_str();
  }
}

TEST(FieldText, FaultyTextChangesNothing) {
  SoSFInt32 number;
  number.setValue(5);
  SbString reason;
  for (char const* text : {"", "x", "1.5", "1 2", "2147483648", "1e3", "0x", "--1"}) {
    EXPECT_FALSE(number.set(text, &reason)) << text;
    EXPECT_FALSE(reason.empty());
    EXPECT_EQ(number.getValue(), 5);
  }
  EXPECT_EQ(reason.str(), "expected an integer, found '--1'");
}

TEST(FieldText, SymbolsOfTheirField) {
  SoRef<SoCylinder> const cylinder(new SoCylinder);
  SbString text, reason;
  for (auto const& [given, expected] : std::initializer_list<std::pair<char const*, char const*>>{
           {"SIDES", "SIDES"}, {"( TOP | SIDES )", "( SIDES | TOP )"}, {"(SIDES|TOP|BOTTOM)", "ALL"}, {"NONE", "NONE"}}) {
    ASSERT_TRUE(cylinder->parts.set(given, &reason)) << reason.c_str();
    EXPECT_EQ(textOf(cylinder->parts), expected);
  }
  for (char const* faulty : {"LEFT", "( SIDES | LEFT )", "( SIDES", "( | )"}) {
    EXPECT_FALSE(cylinder->parts.set(faulty, &reason)) << faulty;
  }
  EXPECT_TRUE(cylinder->set("radius 3 parts TOP"));
  EXPECT_EQ(cylinder->radius.getValue(), 3);
}

TEST(FieldText, RealsAreReadExactlyAndWrittenShortest) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 200'000; ++i) {
    auto const value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (std::isnan(value)) continue;
    std::string const text = SoValueToText(value).str();
    float back = 0;
    ASSERT_TRUE(SoValueFromText(text.c_str(), back)) << text;
    ASSERT_EQ(std::bit_cast<std::uint32_t>(back), std::bit_cast<std::uint32_t>(value)) << text;
  }
  for (int i = -900'000; i <= 900'000; ++i) {
    float const value = static_cast<float>(i) / 8;
    char shortest[32];
    std::string_view const expected(shortest, std::to_chars(shortest, shortest + 32, value).ptr);
    ASSERT_EQ(SoValueToText(value).str(), expected);
  }
  // Digits as people and programs write them: at most one rounding.
  for (int i = 0; i < 200'000; ++i) {
    std::string text = std::to_string(random() % 1'000'000'000'000);
    text.insert(random() % text.size(), ".");
    if (random() % 2) text += "e" + std::to_string(static_cast<int>(random() % 60) - 30);
    float value = 0;
    double wide = 0, wideExpected = 0;
    std::from_chars(text.data(), text.data() + text.size(), wideExpected);
    float const expected = std::strtof(text.c_str(), nullptr);
    ASSERT_EQ(SoValueFromText((text + " ").c_str(), value), std::isfinite(expected)) << text;
    if (std::isfinite(expected)) {
      ASSERT_EQ(value, expected) << text;
    }
    ASSERT_TRUE(SoValueFromText((text + " ").c_str(), wide)) << text;
    ASSERT_EQ(wide, wideExpected) << text;
  }
}

// What is set as text comes back as text, through set() and through both forms of a file.
TEST(FieldText, NothingIsLostOnTheWay) {
  std::string everyByte;
  for (int c = 1; c < 256; ++c) everyByte += static_cast<char>(c);
  std::vector<std::pair<char const*, std::string>> values = {
      {"SFFloat", "-0"},       {"SFFloat", "nan"},      {"SFFloat", "inf"},      {"SFFloat", "-inf"},
      {"SFFloat", "1e-45"},    {"SFFloat", "-1e-45"},   {"SFFloat", "1.1754942e-38"}, {"SFFloat", "3.4028235e+38"},
      {"SFDouble", "-0"},      {"SFDouble", "5e-324"},  {"SFDouble", "1.7976931348623157e+308"},
      {"SFVec3f", "-0 nan inf"}, {"SFTime", "-0"},      {"MFFloat", "[ -0, nan ]"},
      {"SFBox3f", "3.4028235e+38 3.4028235e+38 3.4028235e+38 -3.4028235e+38 -3.4028235e+38 -3.4028235e+38"},
      {"SFString", "\"\""},    {"SFString", "\"\\\\\""}, {"SFString", "\"\\\"\""},
      {"SFString", "\"" + std::string(3'000'000, 'x') + "\""},
  };
  for (std::string const& text : {everyByte, std::string("\\"), std::string("a\\\"b\\\\\""), std::string("\xff\xfe broken"),
                                  std::string("\u65e5\u672c \U0001f600"), std::string("line\r\nline\t")}) {
    values.emplace_back("SFString", SoValueToText(SbString(text)).str());
  }
  for (auto const& [type, given] : values) {
    std::unique_ptr<SoField> const field = makeField(type);
    SbString reason;
    ASSERT_TRUE(field->set(given.c_str(), &reason)) << type << " " << given.substr(0, 100) << ": " << reason.c_str();
    ASSERT_TRUE(textOf(*field) == given) << type << " " << given.substr(0, 100);
    std::string const node = std::string("Odd { fields [ ") + type + " f ] f " + given + " }";
    SoRef<SoNode> const root = readText(node);
    ASSERT_TRUE(root) << type;
    std::string const written = writeText(root);
    ASSERT_TRUE(writeText(readText(written)) == written) << type << " " << given.substr(0, 100);
    ASSERT_TRUE(writeText(readText(writeBytes(root))) == written) << type << " " << given.substr(0, 100);
  }
}

TEST(FieldText, BinaryFormComesBack) {
  SoMFFloat numbers;
  std::vector<float> const values{1, -0.f, 3.5f, INFINITY};
  numbers.setValues(values);
  SoSFString text;
  text.setValue("a\"b");
  SoOutput out;
  out.setBuffer();
  out.setBinary(true);
  text.writeValue(out);
  numbers.writeValue(out);
  std::string const bytes = out.takeBuffer();
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    SoInput in;
    in.setBuffer(std::string_view(bytes).substr(0, length), true);
    SoSFString textBack;
    SoMFFloat back;
    bool const ok = textBack.readValue(in) && back.readValue(in);
    ASSERT_EQ(ok, length == bytes.size());
    if (!ok) continue;
    EXPECT_EQ(textBack.getValue().str(), "a\"b");
    EXPECT_TRUE(back.isSame(numbers));
  }
}

TEST(FieldText, ManyValuesStandInShortLines) {
  SoMFFloat numbers;
  numbers.setValues(std::vector<float>(1000, 0.25f));
  std::istringstream lines(textOf(numbers));
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 100u);
  EXPECT_LT(count, 80);
}

}  // namespace
