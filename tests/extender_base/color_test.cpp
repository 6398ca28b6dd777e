// The editor for a colour, used by hand.

#include <QAbstractSpinBox>
#include <QColorDialog>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QToolButton>
#include <QWheelEvent>
#include <cmath>

#include "kestrava/fields/SoSFColor.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/extender_base/EditorTest.h"
#include "vnt/VntServices.h"

class ColorTest : public EditorTest {
 public:
  ColorTest() {
    scene = new SoSeparator;
    light = new SoDirectionalLight;
    scene->addChild(light);
    edit(scene, "renderCaching");
    edit(light, "color");
  }

  SbColor color() const { return light->color.getValue(); }
  QLineEdit* line(char const* name) const { return find<QLineEdit>(name); }
  static QPoint at(QWidget const* slider, double part) {
    return {static_cast<int>(4 + part * (slider->width() - 9)), slider->height() / 2};
  }
  QColor swatch() const {
    return find<QToolButton>("swatch")->icon().pixmap(64, 24).toImage().pixelColor(32, 12);
  }

  SoSeparator* scene;
  SoDirectionalLight* light;
};

namespace {

TEST_F(ColorTest, TextIsTakenInEveryFormAndUndone) {
  EXPECT_EQ(line("colorText")->text(), "#ffffff");
  type(line("colorText"), "#ff8000");
  EXPECT_EQ(color(), SbColor(1, 128 / 255.0f, 0));
  EXPECT_EQ(swatch(), QColor("#ff8000"));
  EXPECT_EQ(line("green")->text().toFloat(), 128 / 255.0f);
  type(line("colorText"), "navy");
  EXPECT_EQ(color(), SbColor(0, 0, 128 / 255.0f));
  EXPECT_EQ(line("colorText")->text(), "#000080");
  type(line("colorText"), "0.25 0.5 0.75");
  EXPECT_EQ(color(), SbColor(0.25f, 0.5f, 0.75f));
  EXPECT_EQ(countSteps(), 3);
  undo();
  undo();
  EXPECT_EQ(color(), SbColor(1, 128 / 255.0f, 0));
  EXPECT_TRUE(waitFor([&] { return line("colorText")->text() == "#ff8000"; }));
  redo();
  EXPECT_TRUE(waitFor([&] { return line("colorText")->text() == "#000080"; }));
}

TEST_F(ColorTest, WrongTextSaysWhyAndStays) {
  type(line("colorText"), "reddish");
  EXPECT_TRUE(problem().contains("\"reddish\" is no colour")) << qPrintable(problem());
  EXPECT_EQ(line("colorText")->text(), "reddish");
  EXPECT_EQ(color(), SbColor(1, 1, 1));
  light->color = SbColor(0, 1, 0);
  EXPECT_TRUE(waitFor([&] { return note() == "changed to 0 1 0"; })) << qPrintable(note());
  EXPECT_EQ(line("colorText")->text(), "reddish");
  QTest::keyClick(line("colorText"), Qt::Key_Escape);
  EXPECT_EQ(line("colorText")->text(), "#00ff00");
  EXPECT_EQ(problem() + note(), "");
  type(line("red"), "1/0 +");
  EXPECT_FALSE(problem().isEmpty());
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(ColorTest, PartsOutsideAreShownAndSurvive) {
  auto const isHinted = [&] { return find<QLabel>("colorHint")->isVisibleTo(panel()); };
  EXPECT_FALSE(isHinted());
  light->color = SbColor(0.5f, -2, 7);
  ASSERT_TRUE(waitFor(isHinted));
  EXPECT_EQ(line("green")->text(), "-2");
  EXPECT_EQ(line("blue")->text(), "7");
  EXPECT_EQ(swatch(), QColor(128, 0, 255));
  type(line("red"), "1/4");
  EXPECT_EQ(color(), SbColor(0.25f, -2, 7));
  // Turning the hue there and back.
  QString const hue = line("hue")->text();
  type(line("hue"), "30");
  type(line("hue"), hue.toUtf8());
  EXPECT_NEAR(color()[1], -2, 1e-5);
  EXPECT_NEAR(color()[2], 7, 1e-5);

  light->color = SbColor(NAN, 0.5f, INFINITY);
  EXPECT_TRUE(waitFor([&] { return line("red")->text() == "nan"; })) << qPrintable(line("red")->text());
  EXPECT_EQ(line("blue")->text(), "inf");
  type(line("green"), "1");
  EXPECT_TRUE(std::isnan(color()[0]));
  EXPECT_EQ(color()[1], 1);
  EXPECT_TRUE(std::isinf(color()[2]));
  type(line("value"), "0.5");
  EXPECT_EQ(color(), SbColor(0.5f, 0.5f, 0.5f));
}

TEST_F(ColorTest, ADragIsOneStepAndEscapeGivesBack) {
  auto* const slider = find<QSlider>("greenSlider");
  auto const drag = [&](double from, double to) {
    QTest::mousePress(slider, Qt::LeftButton, {}, at(slider, from));
    for (int i = 1; i <= 20; ++i) QTest::mouseMove(slider, at(slider, from + (to - from) * i / 20));
  };
  drag(0.9, 0.25);
  EXPECT_NEAR(color()[1], 0.25, 0.02) << "the scene does not follow the drag";
  QTest::mouseRelease(slider, Qt::LeftButton, {}, at(slider, 0.25));
  SbColor const dragged = color();
  EXPECT_EQ(countSteps(), 1);
  undo();
  EXPECT_EQ(color(), SbColor(1, 1, 1));
  redo();
  EXPECT_EQ(color(), dragged);

  drag(0.25, 0.8);
  QTest::keyClick(slider, Qt::Key_Escape);
  EXPECT_EQ(color(), dragged);
  QTest::mouseMove(slider, at(slider, 0.1));
  QTest::mouseRelease(slider, Qt::LeftButton, {}, at(slider, 0.1));
  EXPECT_EQ(color(), dragged);
  EXPECT_EQ(countSteps(), 1);

  // So are keys and turns of the wheel one after the other.
  slider->setFocus();
  for (int i = 0; i < 5; ++i) QTest::keyClick(slider, Qt::Key_Left);
  EXPECT_NEAR(color()[1], dragged[1] - 0.05, 0.002);
  QPointF const middle = slider->rect().center();
  for (int i = 0; i < 3; ++i) {
    QWheelEvent wheel(middle, slider->mapToGlobal(middle), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(slider, &wheel);
  }
  EXPECT_LT(color()[1], dragged[1] - 0.07);
  QTest::keyClick(slider, Qt::Key_Tab);
  EXPECT_EQ(countSteps(), 2);
  undo();
  EXPECT_EQ(color(), dragged);

  // Taking hold of the handle beside its middle moves nothing.
  ASSERT_TRUE(waitFor([&] { return line("green")->text().toFloat() == dragged[1]; }));
  QTest::mouseClick(slider, Qt::LeftButton, {}, at(slider, dragged[1]) + QPoint(3, 0));
  EXPECT_EQ(color(), dragged);
}

TEST_F(ColorTest, HueStaysWhileAColorPassesThroughGrey) {
  type(line("colorText"), "#4080ff");
  QString const hue = line("hue")->text();
  EXPECT_NEAR(hue.toDouble(), 219.9, 0.1);
  auto* const slider = find<QSlider>("saturationSlider");
  slider->setFocus();
  QTest::keyClick(slider, Qt::Key_Home);
  EXPECT_EQ(color(), SbColor(1, 1, 1));
  EXPECT_EQ(line("hue")->text(), hue);
  type(line("value"), "0");
  EXPECT_EQ(color(), SbColor(0, 0, 0));
  type(line("value"), "1");
  type(line("saturation"), "1");
  EXPECT_EQ(line("hue")->text(), hue);
  EXPECT_EQ(color()[2], 1);
  type(line("hue"), "-120");
  EXPECT_EQ(color(), SbColor(0, 0, 1));
  type(line("hue"), "120");
  EXPECT_EQ(color(), SbColor(0, 1, 0));
  EXPECT_EQ(line("hue")->text(), "120");
}

TEST_F(ColorTest, TheDialogPreviewsAndIsOneStepOrNone) {
  auto const open = [&]() -> QColorDialog* {
    QTest::mouseClick(find<QToolButton>("swatch"), Qt::LeftButton);
    auto* const dialog = panel()->findChild<QColorDialog*>("colorDialog");
    EXPECT_TRUE(dialog && QTest::qWaitForWindowActive(dialog));
    return dialog;
  };
  auto const enter = [&](QColorDialog* dialog, char const* text) {
    // The others belong to its spin boxes.
    QLineEdit* name = nullptr;
    for (QLineEdit* other : dialog->findChildren<QLineEdit*>()) {
      if (!qobject_cast<QAbstractSpinBox*>(other->parent())) name = other;
    }
    ASSERT_TRUE(name);
    name->selectAll();
    QTest::keyClicks(name, text);
  };
  QColorDialog* dialog = open();
  ASSERT_TRUE(dialog);
  enter(dialog, "#00ff00");
  EXPECT_EQ(color(), SbColor(0, 1, 0));
  EXPECT_EQ(swatch(), QColor("#00ff00"));
  QTest::keyClick(dialog, Qt::Key_Escape);
  EXPECT_EQ(color(), SbColor(1, 1, 1));
  EXPECT_EQ(countSteps(), 0);
  ASSERT_TRUE(waitFor([&] { return !panel()->findChild<QColorDialog*>("colorDialog"); }));

  dialog = open();
  ASSERT_TRUE(dialog);
  enter(dialog, "#0000ff");
  QTest::keyClick(dialog, Qt::Key_Return);
  EXPECT_EQ(color(), SbColor(0, 0, 1));
  EXPECT_EQ(countSteps(), 1);

  // What a screen cannot show is not lost by looking.
  light->color = SbColor(4, 0, 0);
  ASSERT_TRUE(waitFor([&] { return line("red")->text() == "4"; }));
  ASSERT_TRUE(waitFor([&] { return !panel()->findChild<QColorDialog*>("colorDialog"); }));
  dialog = open();
  ASSERT_TRUE(dialog);
  QTest::keyClick(dialog, Qt::Key_Return);
  EXPECT_EQ(color(), SbColor(4, 0, 0));
  EXPECT_EQ(countSteps(), 1);
}

TEST_F(ColorTest, TheFieldMayGoWhileSomethingIsTyped) {
  auto* const lamp = new SoDirectionalLight;
  scene->addChild(lamp);
  for (int i = 0; i < 2; ++i) VntServices::getInstance()->setSelectedField(&lamp->color); // its row, twice
  type(line("colorText"), "#00ff00", false);
  scene->removeChild(lamp);
  EXPECT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(ColorTest, TheFieldMayGoInADragAndUnderTheDialog) {
  // Nobody but the scene holds this one.
  auto* const lamp = new SoDirectionalLight;
  scene->addChild(lamp);
  VntServices::getInstance()->setSelectedField(&lamp->color);
  QTest::mouseClick(find<QToolButton>("swatch"), Qt::LeftButton);
  QPointer<QColorDialog> const dialog = panel()->findChild<QColorDialog*>("colorDialog");
  ASSERT_TRUE(dialog);
  QPointer<QSlider> const slider = find<QSlider>("redSlider");
  QTest::mousePress(slider.data(), Qt::LeftButton, {}, at(slider, 0.9));
  QTest::mouseMove(slider.data(), at(slider, 0.5));
  scene->removeChild(lamp);
  ASSERT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
  if (slider) QTest::mouseMove(slider.data(), at(slider, 0.2));
  if (slider) QTest::mouseRelease(slider.data(), Qt::LeftButton, {}, at(slider, 0.2));
  if (dialog) dialog->setCurrentColor(Qt::green);
  EXPECT_TRUE(waitFor([&] { return !dialog && !slider; }));
}

} // namespace
