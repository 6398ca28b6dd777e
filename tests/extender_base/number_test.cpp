// Editors for fields of one number, and the line that all editors with numbers use.

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoCone.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "tests/extender_base/EditorTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/VntServices.h"

namespace {

/// The wheel over the middle of a widget.
void turnWheel(QWidget* widget, int notches, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QPointF const at = widget->rect().center();
  QWheelEvent event(at, widget->mapToGlobal(at), {}, {0, notches * 120}, Qt::NoButton, modifiers,
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(widget, &event);
}

class NumberTest : public EditorTest {
 public:
  /// The field `n` of a node of a type that nobody knows.
  void editOdd(std::string const& type, std::string const& value) {
    SoRef<SoSeparator> const root(
        static_cast<SoSeparator*>(read("Odd { fields [ " + type + " n ] n " + value + " }")));
    edit(root->getChild(0), "n");
  }
  QLineEdit* line() const { return find<QLineEdit>("number"); }
  void enter(char const* text) { type(line(), text); }
  void focusLine() {
    line()->setFocus();
    ASSERT_TRUE(waitFor([&] { return line()->hasFocus(); }));
  }
  /// Drags the handle of the line by some pixels, in several moves, without letting it go.
  QWidget* pull(int pixels) {
    auto* const handle = find<QWidget>("dragHandle");
    QPoint const at = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, at);
    for (int i = 1; i <= 10; ++i) QTest::mouseMove(handle, at + QPoint(pixels * i / 10, 0));
    return handle;
  }
};

TEST_F(NumberTest, EveryTypeTakesExpressionsWithinItsRange) {
  struct Case {
    char const* type;
    char const* lowest;
    char const* highest;
    char const* above;
    char const* problem;
  };
  for (Case const& type : {
           Case{"SFInt32", "-2147483648", "2^31-1", "2^31",
                "2147483648 is out of range: -2147483648 to 2147483647."},
           {"SFShort", "-32768", "0x7fff", "32768", "32768 is out of range: -32768 to 32767."},
           {"SFUShort", "0", "0xffff", "-1", "-1 is out of range: 0 to 65535."},
           {"SFUInt32", "0", "2^32-1", "-1", "-1 is out of range: 0 to 4294967295."},
       }) {
    SCOPED_TRACE(type.type);
    editOdd(type.type, "3");
    EXPECT_EQ(line()->text(), "3");
    enter(type.lowest);
    EXPECT_EQ(value(), type.lowest);
    enter(type.highest);
    EXPECT_EQ(line()->text().toStdString(), value());
    EXPECT_EQ(value(), std::to_string(std::llround(std::stod(value()))));
    enter(type.above);
    EXPECT_EQ(problem(), type.problem);
    EXPECT_EQ(line()->text(), type.above) << "the text stays, to be mended";
    enter("10/4");
    EXPECT_EQ(problem(), "Only whole numbers fit here; this is 2.5.");
    enter("nan");
    EXPECT_EQ(problem(), "\"nan\" does not fit here.");
    enter("0.1*30");
    EXPECT_EQ(problem(), "");
    EXPECT_EQ(value(), "3");
    for (int i = 0; i < 3; ++i) undo();
    EXPECT_EQ(value(), "3");
    ASSERT_TRUE(waitFor([&] { return line()->text() == "3"; }));
  }
}

TEST_F(NumberTest, FloatsAreTypedUndoneAndSurvive) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  enter("1/3");
  EXPECT_EQ(sphere->radius.getValue(), 1.0f / 3);
  EXPECT_EQ(line()->text(), "0.33333334");
  undo();
  EXPECT_EQ(value(), "1");
  ASSERT_TRUE(waitFor([&] { return line()->text() == "1"; }));
  redo();
  EXPECT_EQ(sphere->radius.getValue(), 1.0f / 3);

  enter("1/0");
  EXPECT_EQ(problem(), "column 2: division by zero");
  EXPECT_EQ(line()->text(), "1/0");
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(line()->text(), "0.33333334");
  enter("1e39");
  EXPECT_EQ(problem(), "1e+39 is too large for a number of single precision.");
  enter("nan");
  EXPECT_TRUE(std::isnan(sphere->radius.getValue()));
  EXPECT_EQ(line()->text(), "nan");
  QTest::keyClick(line(), Qt::Key_Up);
  EXPECT_TRUE(std::isnan(sphere->radius.getValue())) << "there is nothing to step from";
  enter("-inf");
  EXPECT_EQ(sphere->radius.getValue(), -std::numeric_limits<float>::infinity());
  undo();
  EXPECT_TRUE(std::isnan(sphere->radius.getValue()));
  redo();
  EXPECT_EQ(countSteps(), 3);
}

TEST_F(NumberTest, LeavingTheLineEntersEscapeDoesNot) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  type(line(), "7", false);
  QTest::keyClick(line(), Qt::Key_Tab);
  EXPECT_EQ(value(), "7");
  type(line(), "8", false);
  QTest::keyClick(line(), Qt::Key_Escape);
  QTest::keyClick(line(), Qt::Key_Tab);
  EXPECT_EQ(value(), "7");
  EXPECT_EQ(countSteps(), 1);
}

TEST_F(NumberTest, AHostsChangeIsShownBesideWhatIsTyped) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  sphere->radius = 2.0f;
  ASSERT_TRUE(waitFor([&] { return line()->text() == "2"; }));
  type(line(), "4", false);
  sphere->radius = 3.0f;
  ASSERT_TRUE(waitFor([&] { return note() == "changed to 3"; }));
  EXPECT_EQ(line()->text(), "4");
  QTest::keyClick(line(), Qt::Key_Return);
  EXPECT_EQ(value(), "4");
  EXPECT_EQ(note(), "");
  undo();
  EXPECT_EQ(value(), "3");
  type(line(), "9", false);
  sphere->radius = 5.0f;
  ASSERT_TRUE(waitFor([&] { return !note().isEmpty(); }));
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(line()->text(), "5");
  EXPECT_EQ(note(), "");
}

TEST_F(NumberTest, StepsInARowAreOneEdit) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  turnWheel(line(), 1);
  EXPECT_EQ(value(), "1") << "the wheel without the focus only scrolls past";
  focusLine();
  QTest::keyClick(line(), Qt::Key_Up);
  turnWheel(line(), 2);
  EXPECT_EQ(value(), "1.3");
  QTest::keyClick(line(), Qt::Key_PageUp);
  EXPECT_EQ(value(), "2.3");
  QTest::keyClick(line(), Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(line(), Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(value(), "1.29");
  EXPECT_FALSE(frame()->m_undoAction->isEnabled());
  ASSERT_TRUE(waitFor([&] { return frame()->m_undoAction->isEnabled(); })) << "the pause ends the edit";
  undo();
  EXPECT_EQ(value(), "1");
  redo();

  QTest::keyClick(line(), Qt::Key_Down);
  EXPECT_EQ(value(), "1.19");
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(value(), "1.29");
  EXPECT_EQ(countSteps(), 1);
  // Typing and leaving end a row of steps, too.
  QTest::keyClick(line(), Qt::Key_Down);
  enter("6");
  QTest::keyClick(line(), Qt::Key_Up);
  QTest::keyClick(line(), Qt::Key_Tab);
  EXPECT_EQ(value(), "6.1");
  EXPECT_EQ(countSteps(), 4);
  undo();
  EXPECT_EQ(value(), "6");
  undo();
  EXPECT_EQ(value(), "1.19");
}

TEST_F(NumberTest, UndoKeyTakesBackTheStepsThatWereJustMade) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  focusLine();
  QTest::keyClick(line(), Qt::Key_Up);
  QTest::keyClick(line(), Qt::Key_Up);
  QTest::keyClick(line(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(countSteps(), 0);
  EXPECT_EQ(value(), "1");
  enter("5");
  QTest::keyClick(line(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(value(), "1") << "there is no typing to undo";
}

TEST_F(NumberTest, DraggingTheHandleIsOneEdit) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  QWidget* handle = pull(50);
  EXPECT_EQ(value(), "1.5") << "a drag shows in the scene at once";
  EXPECT_EQ(countSteps(), 0);
  QTest::mouseRelease(handle, Qt::LeftButton);
  EXPECT_EQ(countSteps(), 1);
  undo();
  ASSERT_TRUE(waitFor([&] { return line()->text() == "1"; }));

  handle = pull(-30);
  EXPECT_EQ(value(), "0.7");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_EQ(value(), "1");
  QTest::mouseMove(handle, QPoint(200, 0));
  QTest::mouseRelease(handle, Qt::LeftButton);
  EXPECT_EQ(value(), "1") << "the drag is over";
  QTest::mouseClick(handle, Qt::LeftButton);
  EXPECT_EQ(countSteps(), 0);

  editOdd("SFUShort", "65530");
  QTest::mouseRelease(pull(500), Qt::LeftButton);
  EXPECT_EQ(value(), "65535");
}

TEST_F(NumberTest, TheSliderDragsWithinTheUsualRange) {
  auto* const material = new SoMaterial;
  auto* const cone = new SoCone;
  auto* const camera = new SoPerspectiveCamera;
  auto* const scene = new SoSeparator;
  for (SoNode* node :
       {static_cast<SoNode*>(material), static_cast<SoNode*>(cone), static_cast<SoNode*>(camera)})
    scene->addChild(node);
  edit(scene, "renderCaching");
  edit(camera, "heightAngle");
  EXPECT_EQ(find<QLabel>("readout")->text(), "= 45°");
  auto* slider = find<QSlider>("slider");
  auto const at = [&](double part) {
    return QPoint(static_cast<int>(slider->width() * part), slider->height() / 2);
  };
  QTest::mousePress(slider, Qt::LeftButton, {}, at(0.1));
  QTest::mouseMove(slider, at(0.3));
  QTest::mouseMove(slider, at(0.5));
  EXPECT_NEAR(camera->heightAngle.getValue(), 1.57, 0.1);
  EXPECT_EQ(countSteps(), 0);
  QTest::mouseMove(slider, at(2));
  EXPECT_NEAR(camera->heightAngle.getValue(), 3.1416, 0.001);
  QTest::mouseRelease(slider, Qt::LeftButton);
  EXPECT_EQ(countSteps(), 1);
  QTest::mousePress(slider, Qt::LeftButton, {}, at(0.2));
  EXPECT_LT(camera->heightAngle.getValue(), 1);
  QTest::keyClick(slider, Qt::Key_Escape);
  EXPECT_NEAR(camera->heightAngle.getValue(), 3.1416, 0.001);
  QTest::mouseRelease(slider, Qt::LeftButton);
  undo();
  EXPECT_EQ(camera->heightAngle.getValue(), 0.785398f);

  // Without a usual range the slider goes further each time.
  edit(cone, "height");
  slider = find<QSlider>("slider");
  for (double before = 2; before < 100; before = cone->height.getValue()) {
    QTest::mouseClick(slider, Qt::LeftButton, {}, at(1));
    ASSERT_GT(cone->height.getValue(), before);
  }
  slider->setFocus();
  int const steps = countSteps();
  ASSERT_TRUE(waitFor([&] { return slider->value() < slider->maximum(); }));
  float const before = cone->height.getValue();
  turnWheel(slider, -1);
  QTest::keyClick(slider, Qt::Key_PageDown);
  EXPECT_LT(cone->height.getValue(), before);
  QTest::keyClick(slider, Qt::Key_Tab);
  EXPECT_EQ(countSteps(), steps + 1);
}

TEST_F(NumberTest, DoublesAndTimesHaveAllTheirDigits) {
  for (char const* type : {"SFDouble", "SFTime"}) {
    SCOPED_TRACE(type);
    editOdd(type, "0.1");
    int const steps = countSteps();
    EXPECT_EQ(line()->text(), "0.1");
    enter("1/3");
    EXPECT_EQ(value(), "0.3333333333333333");
    enter("one");
    EXPECT_FALSE(problem().isEmpty());
    EXPECT_EQ(line()->text(), "one");
    enter("-1");
    EXPECT_EQ(problem(), "");
    // From -2 to 2; a tick is 0.004, and nothing finer is to be seen.
    auto* const slider = find<QSlider>("slider");
    QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(1, slider->height() / 2));
    for (int x = 1; x < slider->width(); ++x) {
      QTest::mouseMove(slider, QPoint(x, slider->height() / 2));
      ASSERT_LE(value().size(), std::string("-1.996").size()) << value();
    }
    QTest::mouseRelease(slider, Qt::LeftButton);
    EXPECT_EQ(value(), "2");
    EXPECT_EQ(countSteps(), steps + 3);
  }
}

TEST_F(NumberTest, ATimeOfDayStepsByTenthsOfASecond) {
  editOdd("SFTime", "1795000000.5");
  focusLine();
  for (int i = 0; i < 3; ++i) QTest::keyClick(line(), Qt::Key_Up);
  EXPECT_EQ(line()->text(), "1795000000.8");
  EXPECT_EQ(value(), "1795000000.8");
  QTest::keyClick(line(), Qt::Key_Escape);
  EXPECT_EQ(value(), "1795000000.5");
}

TEST_F(NumberTest, TheFieldGoesInTheMiddleOfADrag) {
  auto* const scene = new SoSeparator;
  edit(scene, "renderCaching");
  auto cone = std::make_unique<SoRef<SoCone>>(new SoCone);
  VntServices::getInstance()->setSelectedField(&(*cone)->height);
  QPointer<QWidget> const handle = pull(40);
  EXPECT_NE((*cone)->height.getValue(), 2);
  cone.reset();
  EXPECT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
  if (handle) QTest::mouseMove(handle, QPoint(90, 0));
  if (handle) QTest::mouseRelease(handle, Qt::LeftButton);
  ASSERT_TRUE(waitFor([&] { return !handle; }));
  EXPECT_EQ(countSteps(), 0);
}

} // namespace
