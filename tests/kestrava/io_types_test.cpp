// Every type there is, with every field set, through both forms.

#include <gtest/gtest.h>

#include <map>

#include "kestrava/fields/SoMFEnum.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFieldContainer.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/nodes/SoInfo.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoUnknownNode.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

/// One value as text, for the name of a type without its first two letters.
std::string const* valueOf(std::string const& type) {
  static std::map<std::string, std::string> const values = {
      {"Bool", ""}, // the other one, see below
      {"Int32", "-7"},
      {"UInt32", "4000000000"},
      {"Short", "-300"},
      {"UShort", "60000"},
      {"Float", "0.30000001"},
      {"Double", "0.1234567890123456"},
      {"Time", "12.5"},
      {"Vec2f", "1.5 -2.5"},
      {"Vec3f", "0.1 -0.2 0.3"},
      {"Vec4f", "0.1 0.2 0.3 -0.4"},
      {"Vec2d", "0.1 1e-300"},
      {"Vec3d", "0.1 0.2 1e+300"},
      {"Vec4d", "0.1 0.2 0.3 0.4"},
      {"Vec2s", "-1 2"},
      {"Vec3s", "1 -2 3"},
      {"Vec4ub", "1 2 3 255"},
      {"Vec2i32", "-100000 2"},
      {"Vec3i32", "1 2 -300000"},
      {"Vec4i32", "1 2 3 400000"},
      {"Color", "0.1 0.25 1"},
      {"ColorRGBA", "0.1 0.25 1 0.5"},
      {"Rotation", "0.6 0 0.8 1.25"},
      {"Matrix", "1 0 0 0 0 0.5 0 0 0 0 2 0 5 6 -7 1"},
      {"Plane", "0 0.6 0.8 2.5"},
      {"Box2f", "-1 -2 3 4.5"},
      {"Box2d", "-1 -2 3 4.5"},
      {"Box2s", "-1 -2 3 4"},
      {"Box2i32", "-1 -2 3 4"},
      {"Box3f", "-1 -2 -3 4 5 6.5"},
      {"Box3d", "-1 -2 -3 4 5 6.5"},
      {"Box3s", "-1 -2 -3 4 5 6"},
      {"Box3i32", "-1 -2 -3 4 5 6"},
      {"String", "\"a \\\"quoted\\\" \\\\ word,\n\u00e9 # { [ ~ = .\""},
      {"Name", "\"a name\""},
      {"Image", "2 1 3 0x010203 0xff00fe"},
      {"Array", "2 2 1 0 0.5 1 -1.5"},
      {"BufferObject", "6 0x01020304 0x0506"},
      {"Trigger", ""},
  };
  auto const known = values.find(type);
  return known == values.end() ? nullptr : &known->second;
}

SoRef<SoFieldContainer> create(SoType type) {
  return SoRef<SoFieldContainer>(static_cast<SoFieldContainer*>(type.createInstance()));
}

/// A node that a field takes: a cube, or the first type that it accepts.
bool giveNode(SoSFNode& field) {
  for (int i = 0; i < SoType::getNumTypes(); ++i) {
    SoType const type = i == 0 ? SoType::fromName("Cube") : SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoNode::getClassTypeId()) || !type.canCreateInstance()) continue;
    SoRef<SoNode> const node(SoNode::create(type));
    field.setValue(node);
    if (field.getValue() == node) return true;
  }
  return false;
}

/// Away from what it is; false where no value is known for the type.
bool change(SoField& field) {
  std::string const type = field.getTypeId().getName().str();
  bool const isMany = type.starts_with("M");
  SbString text, reason;
  if (auto* node = dynamic_cast<SoSFNode*>(&field)) return giveNode(*node);
  if (auto* nodes = dynamic_cast<SoMFNode*>(&field)) {
    SoRef<SoNode> const cube(SoNode::create(SoType::fromName("Cube")));
    nodes->setValues({cube, nullptr, cube});
    return true;
  }
  if (dynamic_cast<SoSFFieldContainer*>(&field)) return field.set("Cube { width 3 }", &reason);
  if (dynamic_cast<SoSFPath*>(&field)) return field.set("Path { Group { Cube { } } 0 }", &reason);
  if (dynamic_cast<SoMFPath*>(&field)) return field.set("[ NULL, Path { Group { Cube { } } 0 } ]", &reason);
  std::vector<SoEnumSymbol> const symbols =
      field.getContainer()->getFieldData()->getSymbols(field.getIndex());
  if (dynamic_cast<SoSFEnum*>(&field) || dynamic_cast<SoMFEnum*>(&field)) {
    field.get(text);
    for (SoEnumSymbol const& symbol : symbols) {
      std::string const given =
          isMany ? "[ " + std::string(symbol.name) + ", " + symbols[0].name + " ]" : symbol.name;
      if (given != text.str()) return field.set(given.c_str(), &reason);
    }
    return field.set("0", &reason);
  }
  std::string const* const one = valueOf(type.substr(2));
  if (!one) return false;
  if (type == "SFBool") {
    field.get(text);
    return field.set(text.str() == "TRUE" ? "FALSE" : "TRUE", &reason);
  }
  std::string const value = type == "MFBool" ? "[ TRUE, FALSE ]"
                            : isMany         ? "[ " + *one + ", " + *one + " ]"
                                             : *one;
  return field.set(value.c_str(), &reason);
}

void changeAll(SoFieldContainer& container) {
  // By index: setting a field may add others.
  for (int i = 0; i < container.getNumFields(); ++i) {
    SoField& field = *container.getField(i);
    if (field.getFieldType() == SoField::EVENT_OUT || field.getFieldType() == SoField::PRIVATE) continue;
    EXPECT_TRUE(change(field)) << container.getTypeId().getName().c_str() << "." << field.getName().c_str()
                               << " " << field.getTypeId().getName().c_str();
    // A text can not say of a trigger that it was set and is ignored.
    if (i % 3 == 1 && field.getTypeId().getName().str() != "SFTrigger") field.setIgnored(true);
  }
}

/// Text to text, and text to bytes to text.
void expectRoundTrip(SoNode* root, std::string const& what) {
  std::string const text = writeText(root);
  SoRef<SoNode> const fromText = readText(text), fromBytes = readText(writeBytes(root));
  ASSERT_TRUE(fromText) << what << "\n" << text;
  ASSERT_TRUE(fromBytes) << what << "\n" << text;
  EXPECT_EQ(writeText(fromText), text) << what;
  EXPECT_EQ(writeText(fromBytes), text) << what;
}

/// Tells nobody of files that are not there and of values that are not taken.
struct Silence {
  Silence() {
    SoDebugError::setHandlerCallback([](SoError const*, void*) {});
  }
  ~Silence() { SoDebugError::setHandlerCallback(nullptr); }
  ReadErrors errors;
};

std::vector<SoType> creatableTypes(SoType base) {
  std::vector<SoType> types;
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (type.isDerivedFrom(base) && type.canCreateInstance() &&
        !type.getName().str().starts_with("Unknown")) {
      types.push_back(type);
    }
  }
  return types;
}

TEST(AllTypes, NodesWithEveryFieldSetComeBack) {
  Silence const silence;
  SoRef<SoSeparator> const all(new SoSeparator);
  std::vector<SoType> const types = creatableTypes(SoNode::getClassTypeId());
  EXPECT_GT(types.size(), 80u);
  for (SoType type : types) {
    SoRef<SoSeparator> const one(new SoSeparator);
    SoRef<SoNode> const node(SoNode::create(type));
    changeAll(*node);
    one->addChild(node);
    expectRoundTrip(one, type.getName().str());
    all->addChild(node);
  }
  expectRoundTrip(all, "all of them");
}

TEST(AllTypes, EnginesWithEveryInputSetComeBack) {
  Silence const silence;
  SoType const engine = SoType::fromName("Engine");
  int engines = 0;
  for (SoType type : creatableTypes(engine)) {
    ++engines;
    SoRef<SoSeparator> const one(new SoSeparator);
    SoRef<SoFieldContainer> container = create(type);
    changeAll(*container);
    for (int i = 0; i < container->getNumFields(); ++i) {
      if (container->getField(i)->getFieldType() != SoField::EVENT_OUT) continue;
      auto* const info = new SoInfo;
      one->addChild(info);
      EXPECT_TRUE(info->string.connectFrom(container->getField(i))) << type.getName().c_str();
    }
    if (one->getNumChildren() == 0) continue;
    container.reset();
    expectRoundTrip(one, type.getName().str());
  }
  if (engines == 0) GTEST_SKIP() << "there are no engines";
}

} // namespace
