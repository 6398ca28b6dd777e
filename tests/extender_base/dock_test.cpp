// The dock "Field Editor" as a part of the window: keyboard, showing and hiding, and what goes on below it.

#include <QAction>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSlider>

#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "tests/extender_base/EditorTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/inspect/SoNodeOverviewList.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/VntServices.h"

class DockTest : public EditorTest {
 public:
  DockTest() {
    scene = new SoSeparator;
    light = new SoDirectionalLight;
    scene->addChild(light);
    edit(scene, "renderCaching");
    VntServices::getInstance()->setSelectedField(&light->color);
  }

  QDockWidget* dock() const { return frame()->findChild<QDockWidget*>("dockFieldEditor"); }
  QString title() const { return find<QLabel>("fieldName")->text(); }
  bool hasKeys() const { return panel()->isAncestorOf(QApplication::focusWidget()); }
  QAction* viewEntry() const {
    for (QAction* action : frame()->getViewMenu()->actions()) {
      if (action->text() == "Field Editor") return action;
    }
    return nullptr;
  }

  SoSeparator* scene;
  SoDirectionalLight* light;
};

namespace {

TEST_F(DockTest, TheListKeepsTheKeyboardUntilItIsGivenAway) {
  edition()->setNode(light, nullptr, false);
  SoVantleList* const list = edition()->getTabNodeOverview()->getCurrentNodeOverview()->getList();
  SoFieldItem* const row = list->getListItemFromField(&light->color);
  ASSERT_TRUE(row);
  list->scrollToItem(row);
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(row).center());
  QTest::keyClick(list, Qt::Key_Up);
  QTest::keyClick(list, Qt::Key_Down);
  EXPECT_EQ(title(), "color");
  EXPECT_TRUE(list->hasFocus());

  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_TRUE(hasKeys());
  EXPECT_EQ(QApplication::focusWidget(), find<QLineEdit>("colorText"));
  EXPECT_EQ(find<QLineEdit>("colorText")->selectedText(), "#ffffff");

  list->setFocus();
  QTest::keyClick(list, Qt::Key_F6);
  EXPECT_TRUE(hasKeys());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
  EXPECT_TRUE(list->hasFocus());

  // From the state to the value and through it.
  light->color = SbColor(1, 0, 0);
  auto* const reset = find<QWidget>("reset");
  ASSERT_TRUE(waitFor([&] { return reset->isEnabled(); }));
  reset->setFocus();
  QStringList stops;
  for (int i = 0; i < 6; ++i) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    stops << QApplication::focusWidget()->objectName();
  }
  EXPECT_EQ(stops, (QStringList{"swatch", "colorText", "choose", "redSlider", "red", "greenSlider"}))
      << qPrintable(stops.join(' '));

  // A closed dock comes back for that.
  dock()->close();
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(row).center());
  EXPECT_TRUE(dock()->isVisible());
  EXPECT_TRUE(waitFor([&] { return hasKeys(); }));
}

TEST_F(DockTest, UndoIsTheWindowsUnlessSomethingIsBeingTyped) {
  auto* const line = find<QLineEdit>("colorText");
  type(line, "#00ff00");
  EXPECT_EQ(light->color.getValue(), SbColor(0, 1, 0));
  QTest::keyClick(line, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(light->color.getValue(), SbColor(1, 1, 1));
  ASSERT_TRUE(waitFor([&] { return line->text() == "#ffffff"; }));
  QTest::keyClick(line, Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(light->color.getValue(), SbColor(0, 1, 0));
  ASSERT_TRUE(waitFor([&] { return line->text() == "#00ff00"; }));
  type(line, "#12", false);
  QTest::keyClick(line, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(light->color.getValue(), SbColor(0, 1, 0));
  EXPECT_NE(line->text(), "#12");
}

TEST_F(DockTest, WhatIsHalfTypedDoesNotReachTheFieldThatIsLeft) {
  type(find<QLineEdit>("colorText"), "#00ff00", false);
  VntServices::getInstance()->setSelectedField(&light->intensity);
  EXPECT_EQ(title(), "intensity");
  QCoreApplication::processEvents();
  EXPECT_EQ(light->color.getValue(), SbColor(1, 1, 1));
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(DockTest, AClosedDockRestsAndCatchesUp) {
  auto* const line = find<QLineEdit>("colorText");
  ASSERT_TRUE(viewEntry());
  EXPECT_TRUE(viewEntry()->isChecked());
  viewEntry()->trigger();
  EXPECT_FALSE(dock()->isVisible());
  light->color = SbColor(1, 0, 0);
  QTest::qWait(50);
  EXPECT_EQ(line->text(), "#ffffff") << "a hidden editor works";
  viewEntry()->trigger();
  EXPECT_TRUE(dock()->isVisible());
  EXPECT_EQ(line->text(), "#ff0000");
  dock()->close();
  EXPECT_FALSE(viewEntry()->isChecked());
  dock()->setFloating(true);
  dock()->show();
  EXPECT_TRUE(viewEntry()->isChecked());
  light->color = SbColor(0, 0, 1);
  EXPECT_TRUE(waitFor([&] { return line->text() == "#0000ff"; }));
}

TEST_F(DockTest, AFieldThatNeverRestsIsShownAsOftenAsAScreenCanShowIt) {
  auto* const line = find<QLineEdit>("red");
  int shown = 0;
  QObject::connect(line, &QLineEdit::textChanged, line, [&] { ++shown; });
  QElapsedTimer time;
  time.start();
  int changes = 0;
  while (time.elapsed() < 300) {
    light->color = SbColor(static_cast<float>(++changes), 0, 0);
    QCoreApplication::processEvents();
  }
  EXPECT_GT(changes, 100);
  EXPECT_GE(shown, 2);
  EXPECT_LE(shown, 300 / 16 + 2);
  EXPECT_TRUE(waitFor([&] { return line->text().toDouble() == changes; }));
}

TEST_F(DockTest, ANodeMayGoAndComeBackUnderItsEditor) {
  edition()->setNode(light, nullptr, false);
  VntServices::getInstance()->setSelectedField(&light->color);
  type(find<QLineEdit>("colorText"), "#ff0000");
  SoRef<SoNode> const kept(light);
  scene->removeChild(light);
  type(find<QLineEdit>("colorText"), "#00ff00");
  scene->addChild(light);
  undo();
  undo();
  EXPECT_EQ(light->color.getValue(), SbColor(1, 1, 1));

  // The scene is replaced while somebody types.
  type(find<QLineEdit>("colorText"), "#0000", false);
  viewer()->setScene(new SoSeparator, true);
  QCoreApplication::processEvents();
  EXPECT_EQ(light->color.getValue(), SbColor(1, 1, 1));
}

TEST_F(DockTest, ASessionMayEndInADragAndTheValueComesBack) {
  SoRef<SoDirectionalLight> const kept(light);
  auto* const slider = find<QSlider>("redSlider");
  QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(slider->width() / 4, slider->height() / 2));
  EXPECT_NE(light->color.getValue(), SbColor(1, 1, 1));
  SoVantleImpl::stop(true);
  EXPECT_EQ(light->color.getValue(), SbColor(1, 1, 1));
}

TEST_F(DockTest, LongTextsAreCutAndTheDockStaysNarrow) {
  light->setName(SbName(std::string(300, 'n').c_str()));
  SoRef<SoDirectionalLight> const source(new SoDirectionalLight);
  source->setName(SbName(std::string(300, 's').c_str()));
  light->color.connectFrom(&source->color);
  ASSERT_TRUE(waitFor([&] { return find<QLabel>("source")->isVisible(); }));
  EXPECT_LE(panel()->minimumSizeHint().width(), 300);
  EXPECT_LE(panel()->minimumSizeHint().height(), 200);
  EXPECT_GT(find<QLabel>("source")->text().size(), 300);
}

TEST_F(DockTest, ProblemsAreReadableOnEveryPalette) {
  auto const contrast = [&] {
    QPalette const colors = find<QLabel>("problem")->palette();
    return qAbs(colors.color(QPalette::WindowText).lightness() -
                panel()->palette().color(QPalette::Window).lightness());
  };
  EXPECT_GT(contrast(), 100);
  QPalette dark;
  dark.setColor(QPalette::Window, QColor(40, 40, 40));
  dark.setColor(QPalette::WindowText, Qt::white);
  panel()->setPalette(dark);
  EXPECT_GT(contrast(), 100);
}

TEST_F(DockTest, AMaximisedWindowPutsItInItsPlaceAgain) {
  frame()->showMaximized();
  ASSERT_TRUE(waitFor([&] { return frame()->isMaximized(); }));
  viewer()->saveMainFrameSettings();
  SoVantleImpl::stop(true);
  startAttached(new SoSphere);
  EXPECT_EQ(frame()->dockWidgetArea(dock()), Qt::RightDockWidgetArea);
  EXPECT_GT(dock()->y(), frame()->menuBar()->geometry().bottom());
  EXPECT_GT(dock()->x(), frame()->width() / 4);
}

} // namespace
