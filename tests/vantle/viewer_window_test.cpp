// The window: what stands where, and that it stands there again.

#include <QDockWidget>

#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

class WindowTest : public VantleTest {
 public:
  QDockWidget* dock(char const* name) const { return frame()->findChild<QDockWidget*>(name); }
};

TEST_F(WindowTest, DocksOfTheProgram) {
  start();
  struct Case {
    char const *name, *title;
    Qt::DockWidgetArea area;
  } const cases[] = {{"dockMainWin", "Tree View", Qt::LeftDockWidgetArea},
                     {"dockNodeOverview", "Node Overview", Qt::RightDockWidgetArea},
                     {"dockFieldWatch", "Field Watch", Qt::BottomDockWidgetArea}};
  for (Case const& c : cases) {
    QDockWidget* const found = dock(c.name);
    ASSERT_TRUE(found) << c.name;
    EXPECT_EQ(found->windowTitle(), c.title);
    EXPECT_EQ(frame()->dockWidgetArea(found), c.area) << c.name;
    EXPECT_TRUE(found->isVisible()) << c.name;
  }
  auto* const view = qobject_cast<QDockWidget*>(frame()->centralWidget());
  ASSERT_TRUE(view);
  EXPECT_EQ(view->windowTitle(), "Kestrava Scenoscope");
  EXPECT_TRUE(view->isVisible());
}

TEST_F(WindowTest, TheDefaultLayoutFitsSmallAndLargeWindows) {
  start(read("Separator { Cube { } }"));
  frame()->showNormal();
  for (QSize const size : {QSize(800, 600), QSize(1500, 1100)}) {
    frame()->resize(size);
    ASSERT_TRUE(waitFor([&] { return frame()->size() == size; }))
        << "the contents ask for more than the window has";
    QWidget const* const view = frame()->centralWidget();
    EXPECT_TRUE(waitFor([&] { return std::abs(dock("dockMainWin")->width() - size.width() * 27 / 100) < 60; }))
        << dock("dockMainWin")->width() << " of " << size.width();
    EXPECT_LT(dock("dockNodeOverview")->width(), size.width() / 2);
    EXPECT_GT(view->width(), size.width() / 6);
    EXPECT_GT(view->height(), size.height() / 3);
  }
}

TEST_F(WindowTest, LayoutAndSizeComeBack) {
  start();
  EXPECT_TRUE(frame()->windowState() & Qt::WindowMaximized) << "on the first run";
  frame()->showNormal();
  QSize const size(1000, 700);
  frame()->resize(size);
  ASSERT_TRUE(waitFor([&] { return frame()->size() == size; }));
  frame()->addDockWidget(Qt::RightDockWidgetArea, dock("dockFieldWatch"));
  frame()->close();
  EXPECT_FALSE(SoVantleImpl::processEvents());

  start();
  EXPECT_FALSE(frame()->isMaximized());
  EXPECT_TRUE(waitFor([&] { return frame()->size() == size; }));
  EXPECT_EQ(frame()->dockWidgetArea(dock("dockFieldWatch")), Qt::RightDockWidgetArea);
}

} // namespace
