// Connections between fields of different types, and what fields answer.

#include <memory>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShaderProgram.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

std::string textOf(SoField const& field) {
  SbString text;
  field.get(text);
  return text.str();
}

std::unique_ptr<SoField> makeField(std::string const& type) {
  return std::unique_ptr<SoField>(static_cast<SoField*>(SoType::fromName(SbName(type)).createInstance()));
}

} // namespace

TEST(FieldsConversion, ConnectionsConvert) {
  struct Case {
    char const *from, *value, *to, *result;
  };
  for (Case const& c : std::initializer_list<Case>{
           {"SFFloat", "2.9", "SFInt32", "2"},
           {"SFFloat", "-2.9", "SFInt32", "-2"},
           {"SFFloat", "1e20", "SFInt32", "2147483647"},
           {"SFFloat", "-5", "SFUShort", "0"},
           {"SFFloat", "nan", "SFShort", "0"},
           {"SFDouble", "1e300", "SFFloat", "inf"},
           {"SFBool", "TRUE", "SFFloat", "1"},
           {"SFFloat", "0.5", "SFBool", "TRUE"},
           {"SFInt32", "0", "SFBool", "FALSE"},
           {"SFTime", "1.5", "SFFloat", "1.5"},
           {"SFInt32", "-7", "SFTime", "-7"},
           {"SFUInt32", "4294967295", "SFDouble", "4294967295"},
           {"SFVec3f", "1.5 2.5 -3.5", "SFVec3s", "1 2 -3"},
           {"SFVec3f", "1 2 3", "SFColor", "1 2 3"},
           {"SFColorRGBA", "1 0.5 0.25 0", "SFVec4f", "1 0.5 0.25 0"},
           {"SFVec2s", "3 4", "MFVec2d", "3 4"},
           {"SFFloat", "4", "MFInt32", "4"},
           {"MFFloat", "[ 4.5, 5 ]", "SFInt32", "4"},
           {"MFFloat", "[ 4.5, 5 ]", "MFInt32", "[ 4, 5 ]"},
           {"MFBool", "[ TRUE, FALSE ]", "MFFloat", "[ 1, 0 ]"},
           {"MFFloat", "[ 2, 0 ]", "MFBool", "[ TRUE, FALSE ]"},
           {"MFFloat", "[ ]", "MFInt32", "[ ]"},
           {"MFVec3f", "[ 1 2 3, 4 5 6 ]", "MFColor", "[ 1 2 3, 4 5 6 ]"},
           {"SFFloat", "1.5", "SFString", "\"1.5\""},
           {"SFVec3f", "1 2 3", "SFString", "\"1 2 3\""},
           {"SFString", "\"12\"", "SFInt32", "12"},
           {"SFString", "\"1 2 3\"", "SFVec3f", "1 2 3"},
           {"SFString", "\"a b\"", "SFName", "\"a b\""},
           {"SFName", "wheel", "SFString", "\"wheel\""},
           {"SFString", "\"a b\"", "MFString", "\"a b\""},
           {"MFString", "[ \"a b\", c ]", "SFString", "\"a b\""},
           {"MFFloat", "[ 1, 2.5 ]", "MFString", "[\n  \"1\",\n  \"2.5\"\n]"},
           {"MFString", "[ \"1\", \"2.5\" ]", "MFFloat", "[ 1, 2.5 ]"},
           {"SFRotation", "0 0.6 0.8 1", "MFRotation", "0 0.6 0.8 1"},
           {"MFRotation", "[ 0 0.6 0.8 1, 1 0 0 2 ]", "SFRotation", "0 0.6 0.8 1"},
           {"SFMatrix", "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16", "MFMatrix",
            "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
           {"SFPlane", "0 1 0 5", "MFPlane", "0 1 0 5"},
       }) {
    SCOPED_TRACE(std::string(c.from) + " " + c.value + " -> " + c.to);
    auto const source = makeField(c.from), follower = makeField(c.to);
    ASSERT_TRUE(source && follower);
    ASSERT_TRUE(follower->connectFrom(source.get())) << "before there is a value";
    ASSERT_TRUE(source->set(c.value));
    EXPECT_TRUE(follower->needsEvaluation());
    EXPECT_EQ(textOf(*follower), c.result);
    EXPECT_FALSE(follower->needsEvaluation());
  }
}

TEST(FieldsConversion, WhatDoesNotFitIsRefusedOrKeepsTheValue) {
  DebugErrors errors;
  for (auto const& [from, to] :
       std::initializer_list<std::pair<char const*, char const*>>{{"SFVec3f", "SFFloat"},
                                                                  {"SFVec2f", "SFVec3f"},
                                                                  {"SFNode", "SFFloat"},
                                                                  {"SFFloat", "SFNode"},
                                                                  {"SFImage", "SFMatrix"},
                                                                  {"SFPath", "SFNode"}}) {
    SCOPED_TRACE(std::string(from) + " -> " + to);
    auto const source = makeField(from), follower = makeField(to);
    EXPECT_FALSE(follower->connectFrom(source.get()));
    EXPECT_FALSE(follower->isConnected());
  }
  EXPECT_EQ(errors.texts.size(), 6u);
  errors.texts.clear();
  SoRef<SoSwitch> const choice(new SoSwitch);
  auto const text = makeField("SFString");
  ASSERT_TRUE(text->set("\"2\""));
  ASSERT_TRUE(choice->whichChild.connectFrom(text.get()));
  EXPECT_EQ(choice->whichChild.getValue(), 2);
  ASSERT_TRUE(text->set("\"second\""));
  EXPECT_EQ(choice->whichChild.getValue(), 2);
  EXPECT_EQ(choice->whichChild.getValue(), 2);
  ASSERT_EQ(errors.texts.size(), 1u) << "once a change";
  EXPECT_NE(errors.texts[0].find("'whichChild' keeps its value"), std::string::npos) << errors.texts[0];
}

TEST(FieldsConversion, EnumerationsTakeNumbersAndSymbols) {
  SoRef<SoSeparator> const group(new SoSeparator);
  auto const number = makeField("SFInt32"), text = makeField("SFString");
  ASSERT_TRUE(group->renderCaching.connectFrom(number.get()));
  ASSERT_TRUE(number->set("1"));
  EXPECT_EQ(group->renderCaching.getValue(), 1);
  ASSERT_TRUE(group->renderCaching.connectFrom(text.get()));
  ASSERT_TRUE(text->set("\"ON\""));
  EXPECT_EQ(textOf(group->renderCaching), "ON");
  ASSERT_TRUE(text->connectFrom(&group->pickCulling));
  EXPECT_EQ(textOf(*text), "\"AUTO\"");
}

TEST(FieldsConversion, NodesAndPathsStayThemselves) {
  SoRef<SoCube> const cube(new SoCube);
  SoSFNode one;
  SoMFNode many;
  ASSERT_TRUE(many.connectFrom(&one));
  one.setValue(cube);
  ASSERT_EQ(many.getNumValues(), 1);
  EXPECT_EQ(many[0], cube.get());
  many.disconnect();
  SoSFNode back;
  ASSERT_TRUE(back.connectFrom(&many));
  EXPECT_EQ(back.getValue(), cube.get());
  SoRef<SoPath> const path(new SoPath(cube));
  SoSFPath onePath;
  SoMFPath paths;
  ASSERT_TRUE(paths.connectFrom(&onePath));
  onePath.setValue(path);
  ASSERT_EQ(paths.getNumValues(), 1);
  EXPECT_EQ(paths[0], path.get());
}

TEST(FieldsFlags, EveryTypeIsMadeAsItsDefaultAndComparesEqual) {
  // Every type of fields there is, and the ones that must be among them.
  std::vector<std::string> names;
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoField::getClassTypeId()) || !type.canCreateInstance()) continue;
    names.push_back(type.getName().str());
    auto const field = makeField(names.back()), other = makeField(names.back());
    SCOPED_TRACE(names.back());
    EXPECT_EQ(field->getTypeId(), type);
    EXPECT_TRUE(field->isDefault() && !field->isConnected() && !field->isIgnored() &&
                !field->needsEvaluation());
    EXPECT_TRUE(field->isSame(*other));
    EXPECT_EQ(field->getContainer(), nullptr);
    if (names.back().starts_with("MF")) {
      EXPECT_TRUE(type.isDerivedFrom(SoType::fromName("MField")));
      auto& values = static_cast<SoMField&>(*field);
      EXPECT_EQ(values.getNum(), 0);
      SbString text("x");
      values.get1(0, text);
      EXPECT_TRUE(text.empty());
    } else {
      EXPECT_TRUE(type.isDerivedFrom(SoType::fromName("SField")));
    }
    field->touch();
    EXPECT_TRUE(field->copyFrom(*other));
    EXPECT_FALSE(field->isDefault());
  }
  for (char const* wanted : {"SFBitMask",
                             "SFBool",
                             "SFBox2f",
                             "SFBox3s",
                             "SFColor",
                             "SFEnum",
                             "SFFloat",
                             "SFImage",
                             "SFInt32",
                             "SFMatrix",
                             "SFName",
                             "SFPlane",
                             "SFRotation",
                             "SFShort",
                             "SFString",
                             "SFUInt32",
                             "SFUShort",
                             "SFVec2f",
                             "SFVec2i32",
                             "SFVec2s",
                             "SFVec3f",
                             "SFVec4f",
                             "MFColor",
                             "MFFloat",
                             "MFInt32",
                             "MFMatrix",
                             "MFPlane",
                             "MFRotation",
                             "MFShort",
                             "MFString",
                             "MFUInt32",
                             "MFUShort",
                             "MFVec2f",
                             "MFVec2i32",
                             "MFVec2s",
                             "MFVec3f",
                             "MFVec4f",
                             "SFNode",
                             "MFNode",
                             "SFArray",
                             "MFUniformShaderParameter",
                             "MFInstanceParameter",
                             "SFBufferObject",
                             "SFFieldContainer",
                             "SFPath",
                             "MFPath",
                             "SFTime",
                             "MFTime",
                             "SFTrigger",
                             "MFName",
                             "MFEnum",
                             "MFBitMask",
                             "SFDouble",
                             "MFDouble",
                             "SFBox2d",
                             "SFBox2i32",
                             "SFBox2s",
                             "SFBox3d",
                             "SFBox3f",
                             "SFBox3i32"}) {
    EXPECT_NE(std::find(names.begin(), names.end(), wanted), names.end()) << wanted;
  }
}

TEST(FieldsFlags, ConnectingAndIgnoringTell) {
  SoRef<SoCube> const source(new SoCube), follower(new SoCube);
  Listener listener(follower);
  int calls = 0;
  SoFieldSensor sensor([](void* data, SoSensor*) { ++*static_cast<int*>(data); }, &calls);
  sensor.setPriority(0);
  sensor.attach(&follower->width);
  auto const told = [&] {
    auto const heard = listener.take();
    bool const once = heard.size() == 1 && heard[0].field == &follower->width && calls == 1;
    calls = 0;
    return once;
  };
  EXPECT_TRUE(follower->width.connectFrom(&source->width));
  EXPECT_TRUE(told());
  EXPECT_FALSE(follower->width.isDefault());
  follower->width.disconnect();
  EXPECT_TRUE(told());
  follower->width.setIgnored(true);
  EXPECT_TRUE(told());
  follower->width.setIgnored(true);
  EXPECT_FALSE(told()) << "nothing has changed";
  follower->width.enableNotify(false);
  follower->width = 7.f;
  EXPECT_FALSE(told());
  EXPECT_EQ(follower->width.getValue(), 7);
}

TEST(FieldsFlags, NodeIdsChangeWithEveryChangeAndUpwards) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* cube = new SoCube;
  auto* apart = new SoCube;
  root->addChild(cube);
  root->addChild(apart);
  auto const states = [&] { return std::vector<std::uint64_t>{root->getNodeId(), cube->getNodeId()}; };
  auto const untouched = apart->getNodeId();
  auto changes = [&](auto change) {
    auto const before = states();
    change();
    auto const after = states();
    return before[0] != after[0] && before[1] != after[1] && after[0] != after[1];
  };
  EXPECT_TRUE(changes([&] { cube->width = 3.f; }));
  EXPECT_TRUE(changes([&] { cube->width = 3.f; })) << "the same value again";
  EXPECT_TRUE(changes([&] { cube->width.setIgnored(true); }));
  EXPECT_TRUE(changes([&] { cube->width.connectFrom(&apart->width); }));
  EXPECT_TRUE(changes([&] { apart->width = 1.f; })) << "through the connection";
  EXPECT_NE(apart->getNodeId(), untouched);
  EXPECT_TRUE(changes([&] { cube->touch(); }));
  auto const rootId = root->getNodeId();
  root->addChild(new SoCube);
  EXPECT_NE(root->getNodeId(), rootId);
}

// A program that follows the children of such a node would not end.
TEST(FieldsConversion, AConnectionMakesNoNodeContainItself) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const shape = new SoIndexedFaceSet;
  auto* const program = new SoShaderProgram;
  root->addChild(shape);
  root->addChild(program);
  SoRef<SoIndexedFaceSet> const other(new SoIndexedFaceSet);
  SoRef<SoShaderProgram> const others(new SoShaderProgram);
  auto* const cube = new SoCube;
  other->vertexProperty = cube;
  others->shaderObject.setValue(cube);
  ASSERT_TRUE(shape->vertexProperty.connectFrom(&other->vertexProperty));
  ASSERT_TRUE(program->shaderObject.connectFrom(&others->shaderObject));
  EXPECT_EQ(shape->vertexProperty.getValue(), cube);
  EXPECT_EQ(program->shaderObject.getNumValues(), 1);

  other->vertexProperty = root.get();
  others->shaderObject.setValue(root);
  DebugErrors const errors;
  EXPECT_EQ(shape->vertexProperty.getValue(), cube);
  ASSERT_EQ(program->shaderObject.getNumValues(), 1);
  EXPECT_EQ(program->shaderObject.getNode(0), cube);
  ASSERT_EQ(errors.texts.size(), 2u);
  EXPECT_NE(errors.texts[0].find("would contain itself through its field 'vertexProperty'"), std::string::npos);
  shape->vertexProperty.disconnect();
  program->shaderObject.disconnect();
  EXPECT_TRUE(shape->vertexProperty.copyFrom(other->vertexProperty));
  EXPECT_EQ(shape->vertexProperty.getValue(), cube);
}
