// The editor of rotations; axis and angle, Euler angles and ball are to say the same at all times.

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QWheelEvent>
#include <numbers>

#include "kestrava/base/SbRotation.h"
#include "kestrava/nodes/SoTransform.h"
#include "tests/extender_base/EditorTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/VntServices.h"

namespace {

constexpr float PI = std::numbers::pi_v<float>;

class RotationTest : public EditorTest {
 public:
  void editRotation(char const* value) {
    m_node = new SoTransform;
    m_node->rotation.set(value);
    edit(m_node.get(), "rotation");
    choose("unit", "deg");
    choose("eulerOrder", "XYZ");
  }
  void choose(char const* name, char const* item) {
    auto* const box = find<QComboBox>(name);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home);
    while (box->currentText() != item && box->currentIndex() + 1 < box->count())
      QTest::keyClick(box, Qt::Key_Down);
    EXPECT_EQ(box->currentText(), item);
  }
  QString shown(char const* line) const { return find<QLineEdit>(line)->text(); }
  QString euler() const { return shown("eulerX") + " " + shown("eulerY") + " " + shown("eulerZ"); }
  QString axis() const { return shown("axisX") + " " + shown("axisY") + " " + shown("axisZ"); }
  SbRotation const& rotation() const { return m_node->rotation.getValue(); }
  QWidget* ball() const { return find<QWidget>("trackball"); }
  /// Of the ball, which is at the top of its widget.
  QPoint middle() const {
    return QPoint(ball()->width() / 2, std::min(ball()->width(), ball()->height()) / 2);
  }

 private:
  SoRef<SoTransform> m_node;
};

TEST_F(RotationTest, AxisAndAngleInDegreesAndRadians) {
  editRotation("0 1 0 1.5707964");
  EXPECT_EQ(shown("angle"), "90");
  EXPECT_EQ(axis(), "0 1 0");
  EXPECT_EQ(euler(), "0 90 0");
  type(find<QLineEdit>("angle"), "-450"); // more than a turn, and the other way
  EXPECT_FLOAT_EQ(rotation().getAngle(), -2.5f * PI);
  EXPECT_EQ(shown("angle"), "-450");
  EXPECT_EQ(euler(), "0 -90 0");
  choose("unit", "rad");
  EXPECT_EQ(shown("angle"), "-7.8539815");
  EXPECT_EQ(countSteps(), 1);
  type(find<QLineEdit>("angle"), "pi/4");
  EXPECT_FLOAT_EQ(rotation().getAngle(), PI / 4);
  choose("unit", "deg");
  EXPECT_EQ(shown("angle"), "45");
  undo();
  undo();
  EXPECT_EQ(value(), "0 1 0 1.5707964");
  EXPECT_TRUE(waitFor([&] { return shown("angle") == "90"; }));
}

TEST_F(RotationTest, AnAxisIsEnteredBitByBit) {
  editRotation("0 0 1 0");
  type(find<QLineEdit>("axisZ"), "0");
  EXPECT_EQ(problem(), "The axis has length 0: it has no direction to turn about.");
  EXPECT_EQ(shown("axisZ"), "0");
  type(find<QLineEdit>("axisX"), "2");
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(axis(), "2 0 0"); // although the field is still a turn by nothing, which has the axis z
  EXPECT_EQ(value(), "0 0 1 0");
  EXPECT_EQ(countSteps(), 0);
  type(find<QLineEdit>("angle"), "180");
  EXPECT_EQ(value(), "1 0 0 3.1415927");
  EXPECT_EQ(axis(), "2 0 0");

  type(find<QLineEdit>("axisX"), "0 0 0");
  EXPECT_FALSE(problem().isEmpty());
  field()->set("0 1 0 1");
  EXPECT_TRUE(waitFor([&] { return note() == "changed to 0 1 0 1"; }));
  EXPECT_EQ(axis(), "0 0 0");
  QTest::keyClick(find<QLineEdit>("axisX"), Qt::Key_Escape);
  EXPECT_EQ(axis(), "0 1 0");
  EXPECT_EQ(problem(), "");

  QTest::mouseClick(find<QPushButton>("identity"), Qt::LeftButton);
  EXPECT_EQ(value(), "0 0 1 0");
  EXPECT_EQ(euler(), "0 0 0");
  undo();
  EXPECT_EQ(value(), "0 1 0 1");
}

TEST_F(RotationTest, EulerAnglesTurnInTheirOrderAndDoNotJump) {
  editRotation("0 0 1 0");
  type(find<QLineEdit>("eulerX"), "90");
  type(find<QLineEdit>("eulerY"), "90"); // gimbal lock: x and z now turn about one axis
  type(find<QLineEdit>("eulerZ"), "30");
  EXPECT_EQ(euler(), "90 90 30");
  type(find<QLineEdit>("eulerX"), "400");
  EXPECT_EQ(euler(), "400 90 30");
  type(find<QLineEdit>("eulerY"), "0");
  EXPECT_EQ(euler(), "400 0 30");
  SbRotation const wanted =
      SbRotation(SbVec3f(1, 0, 0), 40 * PI / 180) * SbRotation(SbVec3f(0, 0, 1), PI / 6);
  EXPECT_TRUE(rotation().equals(wanted, 1e-6f));
  EXPECT_EQ(countSteps(), 5);

  type(find<QLineEdit>("eulerX"), "20 -50 100");
  SbRotation const all = SbRotation(SbVec3f(1, 0, 0), PI / 9) * SbRotation(SbVec3f(0, 1, 0), -PI * 5 / 18) *
                         SbRotation(SbVec3f(0, 0, 1), PI * 5 / 9);
  EXPECT_TRUE(rotation().equals(all, 1e-6f));
  // In every order the angles that are shown make the rotation that is there.
  for (char const* order : {"XZY", "YXZ", "YZX", "ZXY", "ZYX"}) {
    SCOPED_TRACE(order);
    choose("eulerOrder", order);
    SbRotation made;
    for (char const* turn = order; *turn; ++turn) {
      float const degrees = shown((std::string("euler") + *turn).c_str()).toFloat();
      made *= SbRotation(SbVec3f(*turn == 'X', *turn == 'Y', *turn == 'Z'), degrees * PI / 180);
    }
    EXPECT_TRUE(rotation().equals(made, 1e-5f));
  }
  choose("eulerOrder", "XYZ");
  EXPECT_EQ(countSteps(), 6);
  type(find<QLineEdit>("eulerX"), "inf");
  EXPECT_FALSE(problem().isEmpty());
  EXPECT_TRUE(rotation().equals(all, 1e-6f));
}

TEST_F(RotationTest, EulerAnglesFollowATurningProgramWithoutJumps) {
  editRotation("0 1 0 0");
  for (int degrees : {60, 85, 95, 130, 179, -178, -95, -80, 0}) {
    static_cast<SoSFRotation*>(field())->setValue(
        SbRotation(SbVec3f(0, 1, 0), static_cast<float>(degrees) * PI / 180));
    EXPECT_TRUE(waitFor([&] { return euler() == QString("0 %1 0").arg(degrees); })) << qPrintable(euler());
  }
}

TEST_F(RotationTest, TheBallTurnsByDraggingInOneStep) {
  editRotation("0 0 1 0");
  QWidget* const view = ball();
  QPoint const center = middle();
  int const radius = std::min(view->width(), view->height()) / 2 - 9;
  auto dragRight = [&] {
    QTest::mousePress(view, Qt::LeftButton, {}, center);
    for (int x = 1; x <= radius / 2; ++x) QTest::mouseMove(view, center + QPoint(x, 0));
  };
  dragRight();
  // A quarter of the ball's width is a turn by 30 degrees about y.
  EXPECT_TRUE(rotation().equals(SbRotation(SbVec3f(0, 1, 0), PI / 6), 0.02f)) << value();
  QTest::mouseRelease(view, Qt::LeftButton, {}, center + QPoint(radius / 2, 0));
  EXPECT_EQ(countSteps(), 1);
  EXPECT_NEAR(shown("eulerY").toDouble(), 30, 1.5);
  EXPECT_NEAR(shown("angle").toDouble(), 30, 1.5);
  EXPECT_TRUE(frame()->m_undoAction->toolTip().contains("Turn rotation of Transform"));
  std::string const turned = value();
  undo();
  EXPECT_EQ(value(), "0 0 1 0");
  redo();
  EXPECT_EQ(value(), turned);

  view->setFocus();
  dragRight();
  EXPECT_NE(value(), turned);
  QTest::keyClick(view, Qt::Key_Escape);
  EXPECT_EQ(value(), turned);
  QTest::mouseMove(view, center);
  QTest::mouseRelease(view, Qt::LeftButton, {}, center);
  EXPECT_EQ(value(), turned);
  EXPECT_EQ(countSteps(), 1);

  // Beside the ball: from the right to the top, about the direction of view.
  undo();
  QCoreApplication::processEvents();
  QTest::mousePress(view, Qt::LeftButton, {}, center + QPoint(radius + 4, 0));
  QTest::mouseMove(view, center - QPoint(0, radius + 4));
  QTest::mouseRelease(view, Qt::LeftButton, {}, center - QPoint(0, radius + 4));
  EXPECT_TRUE(rotation().equals(SbRotation(SbVec3f(0, 0, 1), PI / 2), 0.02f)) << value();
}

TEST_F(RotationTest, TheBallGrowsWithTheDock) {
  editRotation("0 0 1 0");
  auto* const dock = frame()->findChild<QDockWidget*>("dockFieldEditor");
  dock->setFloating(true);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(dock));
  auto const side = [&] { return std::min(ball()->width(), ball()->height()); };
  for (int width : {300, 700}) {
    dock->resize(width, 260);
    ASSERT_TRUE(waitFor([&] { return dock->height() < 300 && side() < 200; })) << width << ": " << side();
    dock->resize(width, 700);
    EXPECT_TRUE(waitFor([&] { return side() > 220; })) << width << ": " << side();
  }
  dock->setFloating(false);
}

TEST_F(RotationTest, TheBallTurnsByKeysAndWheel) {
  editRotation("0 0 1 0");
  QWidget* const view = ball();
  view->setFocus();
  for (int i = 0; i < 18; ++i) QTest::keyClick(view, Qt::Key_Right);
  EXPECT_TRUE(rotation().equals(SbRotation(SbVec3f(0, 1, 0), PI / 2), 1e-5f)) << value();
  EXPECT_TRUE(waitFor([&] { return frame()->m_undoAction->isEnabled(); })); // after the pause
  EXPECT_EQ(countSteps(), 1);
  QPointF const center = view->rect().center();
  QWheelEvent wheel(center, view->mapToGlobal(center), {}, QPoint(0, 240), {}, {}, Qt::NoScrollPhase, false);
  QApplication::sendEvent(view, &wheel);
  SbRotation const both = SbRotation(SbVec3f(0, 1, 0), PI / 2) * SbRotation(SbVec3f(0, 0, 1), PI / 18);
  EXPECT_TRUE(rotation().equals(both, 1e-5f)) << value();
  find<QLineEdit>("angle")->setFocus(); // ends it, too
  EXPECT_EQ(countSteps(), 2);
  view->setFocus();
  QTest::keyClick(view, Qt::Key_Up);
  EXPECT_FALSE(rotation().equals(both, 1e-3f));
  QTest::keyClick(view, Qt::Key_Escape);
  EXPECT_TRUE(rotation().equals(both, 1e-5f));
  EXPECT_EQ(countSteps(), 2);
}

TEST_F(RotationTest, TheFieldMayGoDuringADrag) {
  editRotation("0 0 1 0");
  auto other = std::make_unique<SoRef<SoTransform>>(new SoTransform);
  VntServices::getInstance()->setSelectedField(&(*other)->rotation);
  QPointer<QWidget> const view = ball();
  QPoint const center = middle();
  QTest::mousePress(view, Qt::LeftButton, {}, center);
  QTest::mouseMove(view, center + QPoint(10, 10));
  ASSERT_FALSE((*other)->rotation.getValue().isIdentity());
  other.reset();
  ASSERT_TRUE(view);
  QTest::mouseMove(view, center + QPoint(20, 10));
  if (view) QTest::mouseRelease(view, Qt::LeftButton, {}, center);
  EXPECT_TRUE(waitFor([&] { return !view; }));
  EXPECT_EQ(countSteps(), 0);
}

} // namespace
