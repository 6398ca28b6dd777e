// Editors for strings, names, and values that no other editor is for.

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>

#include "kestrava/engines/SoCounter.h"
#include "kestrava/engines/SoGlobalField.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/fields/SoSField.h"
#include "kestrava/nodes/SoImageBackground.h"
#include "kestrava/nodes/SoInfo.h"
#include "kestrava/nodes/SoLabel.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/extender_base/EditorTest.h"
#include "vnt/VntServices.h"

/// A type of a host's own.
SO_SFIELD(SoSFMoment, SbTime)

namespace {

class TextTest : public EditorTest {
 public:
  QLineEdit* line() const { return find<QLineEdit>("line"); }
  QPlainTextEdit* lines() const { return find<QPlainTextEdit>("lines"); }
  /// The field `n` of a node of a type that nobody knows.
  void editOdd(std::string const& type, std::string const& value) {
    SoRef<SoSeparator> const root(
        static_cast<SoSeparator*>(read("Odd { fields [ " + type + " n ] n " + value + " }")));
    edit(root->getChild(0), "n");
  }
};

TEST_F(TextTest, StringsAreTypedInALine) {
  auto* const info = new SoInfo;
  edit(info, "string");
  type(line(), "  it's \"x\" # \\n");
  EXPECT_EQ(info->string.getValue().str(), "  it's \"x\" # \\n")
      << "what is typed is the value, quotes and all";
  type(line(), "half", false);
  info->string = "from the host";
  ASSERT_TRUE(waitFor([&] { return note() == "changed to \"from the host\""; }));
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(line()->text(), "from the host");
  EXPECT_EQ(note(), "");
  type(line(), "left", false);
  QTest::keyClick(line(), Qt::Key_Tab);
  EXPECT_EQ(info->string.getValue(), SbString("left"));
  QTest::keyClick(line(), Qt::Key_Return);
  EXPECT_EQ(countSteps(), 2);
  line()->setFocus();
  QTest::keyClick(line(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(info->string.getValue(), SbString("from the host"));
}

TEST_F(TextTest, StringsOfSeveralLines) {
  auto* const info = new SoInfo;
  info->string = "one\ntwo\xc2\xa0thirds";
  edit(info, "string");
  ASSERT_TRUE(lines()->isVisible());
  EXPECT_FALSE(line()->isVisible());
  EXPECT_FALSE(find<QToolButton>("severalLines")->isEnabled()) << "there is no line for it";
  lines()->setFocus();
  lines()->moveCursor(QTextCursor::End);
  QTest::keyClick(lines(), Qt::Key_Return);
  QTest::keyClicks(lines(), "three");
  EXPECT_EQ(countSteps(), 0);
  QTest::keyClick(lines(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(info->string.getValue().str(), "one\ntwo\xc2\xa0thirds\nthree");
  QTest::keyClicks(lines(), "x");
  QTest::keyClick(lines(), Qt::Key_Escape);
  EXPECT_EQ(lines()->toPlainText(), QString::fromUtf8("one\ntwo thirds\nthree"));
  undo();
  EXPECT_EQ(info->string.getValue().str(), "one\ntwo\xc2\xa0thirds");

  info->string = "single";
  ASSERT_TRUE(waitFor([&] { return lines()->toPlainText() == "single"; }));
  auto* const toggle = find<QToolButton>("severalLines");
  ASSERT_TRUE(toggle->isEnabled());
  lines()->selectAll();
  QTest::keyClicks(lines(), "typed");
  QTest::mouseClick(toggle, Qt::LeftButton);
  EXPECT_EQ(line()->text(), "typed") << "it comes along";
  EXPECT_EQ(info->string.getValue(), SbString("single")) << "and is not entered";
  QTest::keyClick(line(), Qt::Key_Return);
  EXPECT_EQ(info->string.getValue(), SbString("typed"));
}

TEST_F(TextTest, PastedLinesStayLines) {
  auto* const info = new SoInfo;
  edit(info, "string");
  QGuiApplication::clipboard()->setText("a\nb");
  line()->setFocus();
  QTest::keyClick(line(), Qt::Key_V, Qt::ControlModifier);
  ASSERT_TRUE(lines()->isVisible());
  EXPECT_TRUE(lines()->hasFocus());
  QTest::keyClick(lines(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(info->string.getValue(), SbString("a\nb"));
  // Taking back what was typed ends the typing.
  QTest::keyClicks(lines(), "c");
  QTest::keyClick(lines(), Qt::Key_Z, Qt::ControlModifier);
  info->string = "x\ny";
  ASSERT_TRUE(waitFor([&] { return lines()->toPlainText() == "x\ny"; }));
  EXPECT_EQ(note(), "");
}

TEST_F(TextTest, AnEmptyClipboardPastesNothing) {
  auto* const info = new SoInfo;
  info->string = "a\nb";
  edit(info, "string");
  QGuiApplication::clipboard()->setMimeData(new QMimeData);
  lines()->setFocus();
  QTest::keyClick(lines(), Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(lines()->toPlainText(), "a\nb");
}

TEST_F(TextTest, AVeryLongStringIsShownInPartOnly) {
  auto* const info = new SoInfo;
  std::string const text(1'000'000, 'x');
  info->string = SbString(text);
  edit(info, "string");
  EXPECT_LT(lines()->toPlainText().size(), 10'000);
  EXPECT_TRUE(lines()->isReadOnly());
  EXPECT_EQ(find<QLabel>("textHint")->text(),
            "The beginning of 1,000,000 characters, which are too many to be edited here");
  lines()->setFocus();
  QTest::keyClicks(lines(), "y");
  QTest::keyClick(lines(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(info->string.getValue().getLength(), 1'000'000);
  EXPECT_EQ(countSteps(), 0);

  info->string = SbString(std::string(40'000, 'x'));
  ASSERT_TRUE(waitFor([&] { return !lines()->isReadOnly(); }));
  EXPECT_FALSE(find<QToolButton>("severalLines")->isEnabled()) << "too long for a line";
  lines()->moveCursor(QTextCursor::End);
  QTest::keyClicks(lines(), "y");
  QTest::keyClick(lines(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(info->string.getValue().getLength(), 40'001);
}

TEST_F(TextTest, NamesAreKeptAsTheyAreAndTheAlteredOneIsShown) {
  auto* const label = new SoLabel;
  edit(label, "label");
  auto* const altered = find<QLabel>("alteredName");
  type(line(), "x y.z", false);
  EXPECT_TRUE(altered->isVisible());
  EXPECT_EQ(altered->text(), "as the name of a node it becomes \"x_y_z\"");
  QTest::keyClick(line(), Qt::Key_Return);
  EXPECT_EQ(label->label.getValue(), SbName("x y.z"));
  type(line(), "plain");
  EXPECT_FALSE(altered->isVisible());
  undo();
  EXPECT_EQ(label->label.getValue(), SbName("x y.z"));
  type(line(), "dropped", false);
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(label->label.getValue(), SbName("x y.z"));
}

TEST_F(TextTest, ANameThatTheObjectDoesNotTakeStaysForMending) {
  edit(new SoLabel, "label");
  SoGlobalField::create(SbName("speed"), SoType::fromName("SFFloat"));
  SoGlobalField* const global = SoGlobalField::findObject(SbName("speed"));
  VntServices::getInstance()->setSelectedField(&global->name);
  type(line(), "pace");
  EXPECT_EQ(global->name.getValue(), SbName("speed"));
  EXPECT_EQ(problem(), "\"pace\" is not taken; the node keeps \"speed\".");
  EXPECT_EQ(line()->text(), "pace");
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(line()->text(), "speed");
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(countSteps(), 0);
  VntServices::getInstance()->setSelectedField(nullptr);
  SoGlobalField::remove(SbName("speed"));
}

TEST_F(TextTest, AnyValueInItsFileForm) {
  editOdd("SFMoment", "2.5");
  EXPECT_EQ(line()->text(), "2.5");
  type(line(), "7");
  EXPECT_EQ(value(), "7");
  type(line(), "seven");
  EXPECT_FALSE(problem().isEmpty());
  EXPECT_EQ(line()->text(), "seven");
  EXPECT_EQ(value(), "7");
  type(line(), "8");
  EXPECT_EQ(problem(), "");
  undo();
  EXPECT_EQ(value(), "7");
  undo();
  EXPECT_EQ(value(), "2.5");
}

TEST_F(TextTest, ReferencesAreSummedUpNotWritten) {
  SoRef<SoSeparator> const root(static_cast<SoSeparator*>(read(
      "Odd { fields [ SFNode n, SFPath p, SFArray a ] n DEF big Group { Cube {} Cube {} } a 2 1 1 5 6 }")));
  auto* const odd = root->getChild(0);
  edit(odd, "n");
  auto const summary = [&] { return find<QLabel>("summary")->text(); };
  EXPECT_EQ(summary(), "Group \"big\", 2 children");
  static_cast<SoSFNode*>(field())->setValue(nullptr);
  ASSERT_TRUE(waitFor([&] { return summary() == "none (NULL)"; }));
  edit(odd, "a");
  EXPECT_EQ(summary(), "2 x 1 x 1 numbers");
  edit(odd, "p");
  EXPECT_EQ(summary(), "none (NULL)");
  auto* const path = new SoPath(root.get());
  path->append(0);
  static_cast<SoSFPath*>(field())->setValue(path);
  ASSERT_TRUE(waitFor([&] { return summary() != "none (NULL)"; }));
  EXPECT_EQ(summary(), "a path of 2 nodes from Separator to UnknownOdd");
  EXPECT_FALSE(panel()->findChild<QLineEdit*>());
}

TEST_F(TextTest, ATriggerIsPressed) {
  edit(new SoLabel, "label");
  SoRef<SoCounter> const counter(new SoCounter);
  VntServices::getInstance()->setSelectedField(&counter->trigger);
  int const before = counter->output.getValue();
  QTest::mouseClick(find<QPushButton>("trigger"), Qt::LeftButton);
  EXPECT_NE(counter->output.getValue(), before);
  VntServices::getInstance()->setSelectedField(nullptr);
}

} // namespace
