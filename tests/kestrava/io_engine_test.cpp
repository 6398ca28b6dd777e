// Engines and global fields in scene files.

#include <gtest/gtest.h>

#include "kestrava/engines/SoEngine.h"
#include "kestrava/engines/SoGlobalField.h"
#include "kestrava/fields/SoSFRotation.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

SoTransform* transform(SoNode* root, int child) {
  return static_cast<SoTransform*>(static_cast<SoGroup*>(root)->getChild(child));
}

/// Reads the text, and what becomes of it in either form; each time `check(root)` looks at it.
template <class Check> void readInBothForms(std::string const& text, Check check) {
  ReadErrors const errors;
  SoRef<SoNode> root = readText(text);
  ASSERT_TRUE(root) << (errors.texts.empty() ? "" : errors.texts[0]);
  check(root);
  std::string const written = writeText(root), bytes = writeBytes(root);
  for (std::string const& form : {written, bytes}) {
    root = readText(form);
    ASSERT_TRUE(root) << written << (errors.texts.empty() ? "" : errors.texts[0]);
    check(root);
    EXPECT_EQ(writeText(root), written);
    EXPECT_TRUE(writeBytes(root) == bytes);
  }
}

TEST(EngineFiles, AnEngineStandsWhereItIsUsedFirst) {
  readInBothForms(
      "Separator {\n"
      "  DEF first Transform { translation = DEF made ComposeVec3f { x [ 1, 2 ]\n"
      "    y = DecomposeVec3f { vector = USE last . translation } . y\n"
      "    z = DEF same DecomposeVec3f { vector = first.scaleFactor } . z } . vector scaleFactor 1 1 9 }\n"
      "  Transform { translation ~ = USE made . vector scaleFactor = made.vector }\n"
      "  DEF last Transform { translation 5 6 7 }\n"
      "}",
      [](SoNode* root) {
        SoTransform *first = transform(root, 0), *second = transform(root, 1), *last = transform(root, 2);
        EXPECT_EQ(first->translation.getValue(), SbVec3f(1, 6, 9));
        SoField const* const output = first->translation.getConnectedField();
        ASSERT_TRUE(output);
        SoFieldContainer const* const made = output->getContainer();
        EXPECT_EQ(made->getName().str(), "made");
        EXPECT_EQ(second->scaleFactor.getConnectedField(), output);
        EXPECT_EQ(second->translation.getConnectedField(), output);
        EXPECT_EQ(
            made->getField("y")->getConnectedField()->getContainer()->getField("vector")->getConnectedField(),
            &last->translation);
        last->translation.setValue(SbVec3f(0, -1, 0));
        EXPECT_EQ(second->scaleFactor.getValue(), SbVec3f(1, -1, 9));
        last->translation.setValue(SbVec3f(5, 6, 7));
      });
}

TEST(EngineFiles, TextNamesThemWhereThatIsNeeded) {
  SoRef<SoNode> const root = readText(
      "Group { DEF a Transform { translation 1 1 1 = ComposeVec3f { x 2 } . vector }"
      " Transform { translation = ComposeVec3f { } . vector scaleFactor = USE a . translation } }");
  ASSERT_TRUE(root);
  std::string const written = writeText(root);
  EXPECT_NE(written.find(" = ComposeVec3f {\n"), std::string::npos) << written;
  EXPECT_NE(written.find("\n      } . vector\n"), std::string::npos) << written;
  EXPECT_NE(written.find(" = USE a . translation\n"), std::string::npos) << written;
}

TEST(EngineFiles, EnginesMayHaveFieldsOfTheirOwn) {
  readInBothForms(
      "Separator { Transform { translation = Gate { type \"MFVec3f\" enable TRUE input [ 1 2 3 ] } . output }"
      " Transform { scaleFactor = SelectOne { type \"MFVec3f\" index 1 input [ 1 2 3, 4 5 6 ] } . output } }",
      [](SoNode* root) {
        EXPECT_TRUE(transform(root, 0)->translation.isConnected());
        EXPECT_EQ(transform(root, 1)->scaleFactor.getValue(), SbVec3f(4, 5, 6));
      });
}

TEST(EngineFiles, GlobalFieldsAreThoseOfTheProgram) {
  SoField* const known = SoGlobalField::create("ioTestKnown", SoSFRotation::getClassTypeId());
  ASSERT_TRUE(known);
  static_cast<SoSFRotation*>(known)->setValue(SbRotation(SbVec3f(1, 0, 0), 2));
  readInBothForms(
      "Separator { Transform { rotation = GlobalField { type \"SFRotation\" name \"ioTestKnown\" } . "
      "ioTestKnown }"
      " Transform { rotation = GlobalField { type \"SFRotation\" name \"ioTestNew\" ioTestNew 0 1 0 3 } . "
      "ioTestNew } }",
      [&](SoNode* root) {
        EXPECT_EQ(transform(root, 0)->rotation.getConnectedField(), known);
        EXPECT_EQ(transform(root, 0)->rotation.getValue(), SbRotation(SbVec3f(1, 0, 0), 2));
        EXPECT_EQ(transform(root, 1)->rotation.getConnectedField(), SoGlobalField::find("ioTestNew"));
        EXPECT_EQ(transform(root, 1)->rotation.getValue(), SbRotation(SbVec3f(0, 1, 0), 3));
      });
  SoGlobalField::remove("ioTestKnown");
  SoGlobalField::remove("ioTestNew");
}

TEST(EngineFiles, AnEngineOffTheClockStaysOff) {
  readInBothForms(
      "Separator { Transform { translation = ComposeVec3f { x = TimeCounter { timeIn 7 max 9 } . output } . vector }"
      " Transform { translation = ComposeVec3f { y = TimeCounter { timeIn 0 = ElapsedTime { on FALSE } . timeOut "
      "max 9 } . output z = ElapsedTime { } . timeOut } . vector } }",
      [](SoNode* root) {
        auto const timerOf = [&](int child, char const* axis) {
          SoFieldContainer const* const vector =
              transform(root, child)->translation.getConnectedField()->getContainer();
          return vector->getField(axis)->getConnectedField()->getContainer()->getField("timeIn");
        };
        EXPECT_FALSE(timerOf(0, "x")->isConnected());
        EXPECT_EQ(timerOf(1, "y")->getConnectedField()->getName().str(), "timeOut");
        EXPECT_TRUE(timerOf(1, "z")->isConnectionDefault());
        // Leaving the clock is no step of fifty years.
        EXPECT_EQ(transform(root, 0)->translation.getValue()[0], 0);
        EXPECT_EQ(transform(root, 1)->translation.getValue()[1], 0);
      });
}

TEST(EngineFiles, LongChainsCostNoStack) {
  constexpr int LENGTH = 2000;
  // Each takes the x of the vector below it.
  std::string chained = "Separator { Transform { translation = ";
  for (int i = 0; i < LENGTH; ++i) chained += "ComposeVec3f { x = DecomposeVec3f { vector = ";
  chained += "ComposeVec3f { x 3 } . vector";
  for (int i = 0; i < LENGTH; ++i) chained += " } . x } . vector";
  readInBothForms(chained + " } }", [](SoNode* root) {
    EXPECT_EQ(transform(root, 0)->translation.getValue(), SbVec3f(3, 0, 0));
  });
}

TEST(EngineFiles, FaultsLeaveNothing) {
  SoDebugError::setHandlerCallback([](SoError const*, void*) {});
  struct Case {
    char const* text;
    char const* message;
  };
  for (Case const& c : std::initializer_list<Case>{
           {"ComposeVec3f { }", "expected a node, found the engine 'ComposeVec3f'"},
           {"Separator { ComposeVec3f { } }",
            "expected a field of Separator, a node or '}', found the engine 'ComposeVec3f'"},
           {"Transform { translation = ComposeVec3f { }", "expected '.', found the end of the text"},
           {"Transform { translation = ComposeVec3f { } . wide }", "'wide' is not a field of ComposeVec3f"},
           {"Transform { translation = DEF e ComposeVec3f { x = USE e . vector } . vector }",
            "the field 'x' can not follow 'e.vector'"},
           {"Transform { translation = FutureEngine { } . vector }",
            "the type 'FutureEngine' is not known, and its fields are not declared"},
           {"Transform { translation = Engine { } . vector }",
            "there are no nodes of the type 'Engine' itself"},
           {"Group { Transform { translation = DEF e ComposeVec3f { } . vector } USE e }",
            "'e' is no node but a ComposeVec3f"},
           {"Transform { translation = USE nobody . vector }", "no node is defined as 'nobody'"},
       }) {
    ReadErrors const errors;
    EXPECT_FALSE(readText(c.text)) << c.text;
    ASSERT_EQ(errors.texts.size(), 1u) << c.text;
    EXPECT_EQ(errors.texts[0], c.message);
  }
  EXPECT_FALSE(SoBase::getNamedBase("e", SoEngine::getClassTypeId()));
  SoDebugError::setHandlerCallback(nullptr);
}

} // namespace
