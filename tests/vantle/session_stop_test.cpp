// Stops that come while the inspector itself is at work. Events come as from the window system: Qt knows then
// how deep it is in their delivery.

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTest>
#include <QWindow>

#include "kestrava/base/SbVec2s.h"
#include "kestrava/base/SbViewportRegion.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/VntCommand.h"

namespace {

class StopTest : public VantleTest {
 protected:
  StopTest() {
    root->addChild(new SoCube);
    root->addChild(new SoCube);
  }

  void startOnScene() {
    startAttached(root);
    window = frame();
    QObject::connect(window, &QObject::destroyed, window, [this] { ++destroyed; });
  }
  /// What a stranger's slot does.
  void stopInside() {
    ++stops;
    SoVantleImpl::stop(true);
    EXPECT_FALSE(SoVantleImpl::isRunning());
    EXPECT_TRUE(!window || !window->isVisible()) << "still to be seen";
  }
  static bool nothingIsLeft() {
    return !VntServicesImpl::isInstance() && !VntShellImpl::isInstance() && !SoVantleViewer::isInstance();
  }
  /// Does something from inside an event loop, as in a host that calls exec(); true when the session is torn
  /// down before the loop ends.
  bool endsInEventLoop(std::function<void()> const& act) {
    QEventLoop loop;
    bool acted = false;
    QTimer::singleShot(0, [&] {
      act();
      acted = true;
    });
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
      if (acted && nothingIsLeft()) loop.quit();
    });
    watch.start(5);
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    loop.exec();
    return nothingIsLeft();
  }
  void clickIn(QWidget* widget, QPoint position, Qt::MouseButton button = Qt::LeftButton) {
    QWindow* const native = widget->window()->windowHandle();
    QTest::mouseClick(native, button, {}, widget->mapTo(widget->window(), position));
  }
  QMenu* addMenu() {
    auto* const menu = new QMenu("Plug-in");
    menu->addAction("Stop", [this] { stopInside(); });
    VntShell::getInstance()->registerMenu(menu);
    return menu;
  }
  void chooseStop(QMenu* menu) {
    QMenuBar* const bar = frame()->menuBar();
    clickIn(bar, bar->actionGeometry(menu->menuAction()).center());
    ASSERT_TRUE(waitFor([menu] { return menu->isVisible(); }));
    clickIn(menu, menu->actionGeometry(menu->actions().first()).center());
  }
  void clickRow(int index) {
    tree()->expandAll(tree()->firstChild());
    QRect const row = tree()->visualItemRect(tree()->firstChild()->child(index));
    clickIn(tree()->viewport(), row.center());
  }
  void expectAStartWorks() {
    EXPECT_EQ(root->getRefCount(), 1);
    EXPECT_EQ(root->getAuditors().getLength(), 0);
    startAttached(root);
    EXPECT_TRUE(SoVantleImpl::isRunning());
    EXPECT_EQ(tree()->firstChild()->getNode(), root.get());
  }

  SoRef<SoSeparator> root{new SoSeparator};
  QPointer<SoVantleMainFrame> window;
  int stops = 0, destroyed = 0;
};

TEST_F(StopTest, FromAMenuOfAPlugIn) {
  startOnScene();
  QPointer<QMenu> const menu = addMenu();
  EXPECT_TRUE(endsInEventLoop([&] { chooseStop(menu); }));
  EXPECT_EQ(stops, 1);
  EXPECT_FALSE(window);
  delete menu;
  expectAStartWorks();
}

TEST_F(StopTest, FromAShortcut) {
  startOnScene();
  QPointer<QMenu> const menu = addMenu();
  menu->actions().first()->setShortcut(QKeySequence("Ctrl+K"));
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  EXPECT_TRUE(
      endsInEventLoop([&] { QTest::keyClick(window->windowHandle(), Qt::Key_K, Qt::ControlModifier); }));
  EXPECT_EQ(stops, 1);
  delete menu;
  expectAStartWorks();
}

TEST_F(StopTest, WhileARowIsClicked) {
  for (bool inLoop : {true, false}) {
    startOnScene();
    stops = 0;
    auto const stop = [this] {
      if (SoVantleImpl::isRunning()) stopInside();
    };
    QObject::connect(VntServices::getInstance(), &VntServices::selectedFieldChanged, stop);
    QObject::connect(VntServices::getInstance(), &VntServices::selectedNodeChanged, stop);
    QObject::connect(tree(), &QTreeWidget::currentItemChanged, stop);
    if (inLoop) {
      EXPECT_TRUE(endsInEventLoop([&] { clickRow(1); }));
    } else {
      clickRow(1);
      EXPECT_TRUE(waitFor(nothingIsLeft));
    }
    EXPECT_EQ(stops, 1);
  }
  expectAStartWorks();
}

TEST_F(StopTest, FromASignalOfTheServicesThatTheHostSetOff) {
  startOnScene();
  VntServices* const services = VntServices::getInstance();
  QObject::connect(services, &VntServices::selectedNodeChanged, [this] { stopInside(); });
  services->setSelectedNode(root->getChild(0));
  EXPECT_EQ(stops, 1);
  // No event loop is there to go on: the host's next turn does.
  EXPECT_FALSE(SoVantleImpl::processEvents());
  EXPECT_TRUE(nothingIsLeft());
  expectAStartWorks();
}

TEST_F(StopTest, FromACommand) {
  struct Stopper : VntCommand {
    explicit Stopper(std::function<void()> stop) : stop(std::move(stop)) {}
    void execute() override { stop(); }
    void undo() override {}
    void redo() override {}
    std::function<void()> stop;
  };
  startOnScene();
  Stopper command([this] { stopInside(); }); // the history keeps it without destroying it
  VntServices::getInstance()->execute(&command);
  EXPECT_EQ(stops, 1);
  EXPECT_FALSE(SoVantleImpl::processEvents());
  expectAStartWorks();
}

TEST_F(StopTest, FromATimerOfTheHost) {
  startOnScene();
  EXPECT_TRUE(endsInEventLoop([&] { stopInside(); }));
  expectAStartWorks();
}

TEST_F(StopTest, FromATimerWhileABoxIsOpen) {
  startOnScene();
  QTimer hostTimer;
  QObject::connect(&hostTimer, &QTimer::timeout, [&] {
    if (!QApplication::activeModalWidget()) return;
    hostTimer.stop();
    stopInside();
    EXPECT_FALSE(nothingIsLeft()) << "torn down below an open box";
    // Neither the host's turn nor a start may do it here.
    EXPECT_FALSE(SoVantleImpl::processEvents());
    EXPECT_FALSE(nothingIsLeft());
  });
  hostTimer.start(5);
  QAction* const about = window->m_aboutAction;
  about->setShortcut(QKeySequence("Ctrl+K"));
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  EXPECT_TRUE(
      endsInEventLoop([&] { QTest::keyClick(window->windowHandle(), Qt::Key_K, Qt::ControlModifier); }));
  EXPECT_EQ(stops, 1);
  EXPECT_FALSE(QApplication::activeModalWidget());
  expectAStartWorks();
}

TEST_F(StopTest, FromATimerWhileAMenuIsOpen) {
  startOnScene();
  QTimer hostTimer;
  QObject::connect(&hostTimer, &QTimer::timeout, [&] {
    if (!QApplication::activePopupWidget()) return;
    hostTimer.stop();
    stopInside();
    EXPECT_FALSE(QApplication::activePopupWidget());
  });
  hostTimer.start(5);
  QMenuBar* const bar = window->menuBar();
  EXPECT_TRUE(endsInEventLoop(
      [&] { clickIn(bar, bar->actionGeometry(window->getEditMenu()->menuAction()).center()); }));
  EXPECT_EQ(stops, 1);
  expectAStartWorks();
}

TEST_F(StopTest, AStartFromWithinTheStoppedSessionIsRefused) {
  startOnScene();
  auto* const menu = new QMenu("Plug-in");
  menu->addAction("Restart", [this] {
    stopInside();
    SoVantleImpl::start(root.get(), nullptr);
    EXPECT_FALSE(SoVantleImpl::isRunning());
  });
  VntShell::getInstance()->registerMenu(menu);
  EXPECT_TRUE(endsInEventLoop([&] { chooseStop(menu); }));
  EXPECT_EQ(stops, 1);
  delete menu;
  expectAStartWorks();
}

TEST_F(StopTest, AnEndOfTheWatchedObjectsBetweenStopAndTeardown) {
  SoRef<SoGuiRenderArea> area(new SoGuiRenderArea);
  area->getSceneManager()->setSceneGraph(root);
  SoVantleImpl::start(area);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(frame()));
  window = frame();
  QPointer<QMenu> const menu = addMenu();
  QObject::connect(menu->actions().first(), &QAction::triggered, [&] {
    EXPECT_EQ(area->getSceneManager()->getImpl()->getOwnVantle(), 0);
    area.reset();
    root = new SoSeparator;
  });
  EXPECT_TRUE(endsInEventLoop([&] { chooseStop(menu); }));
  delete menu;
}

} // namespace
