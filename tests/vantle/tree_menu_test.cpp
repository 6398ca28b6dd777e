// The context menu of the tree, asked for by mouse and keyboard.

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QStatusBar>
#include <QTest>
#include <QWindow>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/QtText.h"

namespace {

std::string const EACH = "Expand All|Add to Node Overview|Add Node|&Save scene graph|&Delete|-|";
std::string const IGNORE = "&Set Ignored/Enable|-|";
std::string const PATH = "Copy &Path\tCtrl+Shift+C";

/// No plug-in adds entries, and selecting rows holds no nodes, which would count as references.
class MenuTest : public VantleTest {
 protected:
  using Act = std::function<void(QMenu*)>;

  MenuTest() {
    SoPreferences::setValue("KSV_VANTLE_CONFIGURATION_FILE",
                            toSbString(writeFile("none.xml", "<configuration/>")));
  }
  ~MenuTest() override { SoPreferences::removeValue("KSV_VANTLE_CONFIGURATION_FILE"); }

  void startWith(std::string const& scene) {
    start(read(scene));
    VntServicesImpl::getImplInstance()->setSelectionAllowed(false);
    tree()->getGraphSelection()->deselectAll();
    tree()->expandAll(tree()->firstChild());
  }
  SoTreeViewItem* row(int index) const { return tree()->firstChild()->child(index); }

  /// What an open menu shows, "-" for separators.
  static std::string describe(QMenu* menu) {
    QStringList texts;
    for (QAction* action : menu->actions()) {
      if (menu->actionGeometry(action).isEmpty()) continue;
      texts << (action->isSeparator() ? QString("-") : action->text());
    }
    return texts.join('|').toStdString();
  }

  /// Does something that runs a menu; then, with the menu open, something else, and closes it. What it showed.
  std::string whileOpen(std::function<void()> const& open, Act const& act = {}) {
    std::string entries;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
      QPointer<QMenu> const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!menu) return;
      look.stop();
      entries = describe(menu);
      m_place = menu->pos();
      if (act) act(menu);
      if (menu) menu->close();
    });
    look.start(5);
    open();
    return entries;
  }
  std::string menuOf(SoTreeViewItem* row, Act const& act = {}) {
    return whileOpen([&] { click(row); }, act);
  }

  QPoint centerOf(SoTreeViewItem* row) const {
    tree()->scrollToItem(row);
    QRect const seen = tree()->visualItemRect(row).intersected(tree()->viewport()->rect());
    return tree()->viewport()->mapTo(tree()->window(), seen.center());
  }
  QWindow* native() const { return tree()->window()->windowHandle(); }
  void click(SoTreeViewItem* row) { QTest::mouseClick(native(), Qt::RightButton, {}, centerOf(row)); }
  void pressMenuKey() {
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5), tree()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(tree(), &event);
  }
  static void choose(QMenu* menu, QString const& text) {
    for (QAction* action : menu->actions()) {
      if (action->text().remove('&').section('\t', 0, 0) != text) continue;
      return QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
    }
    ADD_FAILURE() << "no entry " << qPrintable(text);
  }

  QPoint m_place; // of the last menu
};

TEST_F(MenuTest, EntriesFollowTheRows) {
  startWith(R"(Separator { Cube { } DEF m Material { } Group { USE m } Sphere { } })");
  EXPECT_EQ(menuOf(row(0)), EACH + IGNORE + PATH);
  EXPECT_EQ(tree()->currentItem(), row(0));
  EXPECT_EQ(SoVantleStateManager::currentStateId(), "TreeViewState");

  // A shared node, before and after its references are shown.
  EXPECT_EQ(menuOf(row(1), [](QMenu* menu) { choose(menu, "Show All References"); }),
            EACH + "&Set Ignored/Enable|-|Show &All References|-|" + PATH);
  EXPECT_TRUE(row(1)->showRefImage());
  std::string const all = "&Set Ignored/Enable|-|Show &All References|&Hide All References|-|";
  auto const enabled = [this](QMenu*) {
    return std::pair(frame()->m_showAllReferencesAction->isEnabled(),
                     frame()->m_hideAllReferencesAction->isEnabled());
  };
  EXPECT_EQ(menuOf(row(1), [&](QMenu* menu) { EXPECT_EQ(enabled(menu), std::pair(false, true)); }),
            EACH + all + PATH);
  // What was shown once stays shown, but does nothing.
  EXPECT_EQ(menuOf(row(3), [&](QMenu* menu) { EXPECT_EQ(enabled(menu), std::pair(false, false)); }),
            EACH + all + PATH);

  // Of an ignored row one entry, which stands at the end from then on.
  row(0)->setIgnoreFlag(true);
  SoTreeViewItem* const ignored = static_cast<SoTreeViewItem*>(tree()->firstChild()->rawChild(0));
  EXPECT_EQ(menuOf(ignored), "&Set Ignored/Enable");
  EXPECT_EQ(menuOf(ignored), "&Set Ignored/Enable");
  EXPECT_EQ(menuOf(tree()->firstChild()->child(2)), EACH + PATH + "|&Set Ignored/Enable");
  // The other menus that these actions stand in have kept them.
  for (QAction* action : {frame()->m_deleteAction, frame()->m_showAllReferencesAction,
                          frame()->m_hideAllReferencesAction, frame()->m_ignoreEnableAction}) {
    EXPECT_TRUE(action->isVisible()) << qPrintable(action->text());
  }
  EXPECT_EQ(frame()->getTreeviewContextMenu(), tree()->getContextMenu());
}

TEST_F(MenuTest, KitParts) {
  startWith("Separator { ShapeKit { appearance AppearanceKit { material Material { } } } Cube { } }");
  SoTreeViewItem* part = nullptr;
  for (SoTreeViewItem* r = row(0); r && !part; r = SoVantleTreeView::itemBelowInTree(r)) {
    if (r->baseKitPart()) part = r;
  }
  ASSERT_TRUE(part);
  // A kit holds its part twice, as a child and by a field.
  std::string const references = part->getRefCount() > 1 ? "Show &All References|-|" : "";
  EXPECT_EQ(menuOf(part), EACH + references + PATH);
  menuOf(row(1));
  std::string const both = menuOf(part, [this](QMenu*) {
    EXPECT_FALSE(frame()->m_ignoreEnableAction->isEnabled());
  });
  EXPECT_NE(both.find("&Set Ignored/Enable"), std::string::npos) << "shown before, it stays shown";
  // An ignored part gets the menu of the row before.
  part->setIgnoreFlag(true);
  EXPECT_EQ(menuOf(part), both);
}

TEST_F(MenuTest, OpensWhereAButtonWasLetGo) {
  startWith("Separator { Cube { } Sphere { } Cone { } }");
  tree()->setCurrentItem(row(1));
  std::string const entries = whileOpen([this] { pressMenuKey(); });
  EXPECT_EQ(entries.substr(0, 10), "Expand All");
  QRect const current = tree()->visualItemRect(row(1));
  EXPECT_EQ(m_place, tree()->viewport()->mapToGlobal(QPoint(current.left(), current.bottom() + 1)));

  // The button is pressed over one row and let go elsewhere.
  QPoint const from = centerOf(row(0)), to = centerOf(row(2)) + QPoint(7, 3);
  QTest::mousePress(native(), Qt::RightButton, {}, from);
  QCoreApplication::processEvents();
  EXPECT_FALSE(QApplication::activePopupWidget());
  QTest::mouseMove(native(), to);
  whileOpen([&] { QTest::mouseRelease(native(), Qt::RightButton, {}, to); });
  EXPECT_EQ(m_place, tree()->window()->mapToGlobal(to));
  EXPECT_EQ(tree()->currentItem(), row(0)) << "it is the menu of the row that was pressed";
  whileOpen([this] { pressMenuKey(); });
  EXPECT_EQ(m_place, tree()->window()->mapToGlobal(to)) << "by key, too";

  // No menu without a row that can be used.
  row(0)->setDisabled(true);
  pressMenuKey();
  tree()->setCurrentItem(nullptr);
  pressMenuKey();
  EXPECT_FALSE(QApplication::activePopupWidget());
}

TEST_F(MenuTest, WhatTheEntriesDo) {
  startWith("Separator { Group { Group { Cube { } } } Sphere { } }");
  row(0)->child(0)->setExpanded(false);
  menuOf(row(0), [](QMenu* menu) { choose(menu, "Expand All"); });
  EXPECT_TRUE(row(0)->child(0)->isExpanded());
  menuOf(row(1), [](QMenu* menu) { choose(menu, "Copy Path"); });
  EXPECT_EQ(QGuiApplication::clipboard()->text(), SoVantleTreeView::pathText(row(1)));
  for (char const* entry : {"Add Node", "Delete"}) {
    frame()->statusBar()->clearMessage();
    menuOf(row(1), [&](QMenu* menu) { choose(menu, entry); });
    EXPECT_TRUE(frame()->statusBar()->currentMessage().endsWith(" is not available yet."))
        << entry << ": " << qPrintable(frame()->statusBar()->currentMessage());
  }
}

TEST_F(MenuTest, MenusOfPlugIns) {
  startWith("Separator { Cube { } Sphere { } Material { } }");
  auto* const shell = VntShellImpl::getImplInstance();
  QMenu forShapes("Shapes"), forCubes("Cubes");
  auto late = std::make_unique<QMenu>("Late");
  for (QMenu* menu : {&forShapes, &forCubes, late.get()}) menu->addAction("Something");
  shell->registerContextualMenu(SoCube::getClassTypeId(), true, &forCubes);
  shell->registerContextualMenu(SoShape::getClassTypeId(), false, &forShapes);
  std::string const plain = EACH + IGNORE + PATH;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(menuOf(row(0)), plain + "|-|Shapes|Cubes");
    EXPECT_EQ(menuOf(row(1)), plain + "|-|Shapes");
    EXPECT_EQ(menuOf(row(2)), plain);
  }
  // They are about the row that they are opened for.
  VntServices::getInstance()->setSelectedNode(nullptr);
  menuOf(row(0), [this](QMenu*) {
    EXPECT_EQ(VntServices::getInstance()->getSelectedNode(), row(0)->getNode());
  });

  // A plug-in goes while its menu is open: once it takes the menu back, once it just destroys it.
  menuOf(row(1), [&](QMenu* menu) {
    shell->unregisterContextualMenu(&forShapes);
    EXPECT_EQ(describe(menu), plain);
  });
  shell->registerContextualMenu(SoSphere::getClassTypeId(), false, late.get());
  EXPECT_EQ(menuOf(row(1),
                   [&](QMenu* menu) {
                     QRect const entry = menu->actionGeometry(late->menuAction());
                     QTest::mouseMove(menu, entry.center());
                     QTest::mouseClick(menu, Qt::LeftButton, {}, entry.center());
                     EXPECT_TRUE(waitFor([&] { return late->isVisible(); }));
                     late.reset();
                     EXPECT_EQ(describe(menu), plain);
                   }),
            plain + "|-|Late");
  EXPECT_EQ(menuOf(row(1)), plain);
}

TEST_F(MenuTest, ClosesWithItsRow) {
  startWith("Separator { Cube { } Sphere { } Cone { } }");
  auto* const scene = static_cast<SoSeparator*>(viewer()->getScene());
  auto const closes = [this](SoTreeViewItem* row, std::function<void()> const& change) {
    bool closed = false;
    menuOf(row, [&](QMenu* menu) {
      change();
      closed = !menu->isVisible();
    });
    return closed;
  };
  EXPECT_FALSE(closes(row(2), [&] { scene->removeChild(0); })) << "another row";
  EXPECT_TRUE(closes(row(1), [&] { scene->removeChild(1); }));
  EXPECT_TRUE(closes(row(0), [this] { tree()->setCurrentItem(tree()->firstChild()); }))
      << "an entry would work on the other row";
  EXPECT_TRUE(closes(row(0), [this] { viewer()->setScene(nullptr, true); }));
}

TEST_F(MenuTest, TheSessionStopsInsideIt) {
  auto const nothingIsLeft = [] {
    return !VntServicesImpl::isInstance() && !VntShellImpl::isInstance() && !SoVantleViewer::isInstance();
  };
  QMenu stopper("Stop");
  stopper.addAction("Now", [] { SoVantleImpl::stop(true); });
  for (bool fromEntry : {true, false}) {
    startWith("Separator { Cube { } }");
    VntShellImpl::getImplInstance()->registerContextualMenu(SoCube::getClassTypeId(), true, &stopper);
    QPointer<SoVantleTreeView> const view = tree();
    menuOf(row(0), [&](QMenu* menu) {
      if (!fromEntry) return SoVantleImpl::stop(true);
      choose(menu, "Stop");
      EXPECT_TRUE(waitFor([&] { return stopper.isVisible(); }));
      QTest::mouseClick(&stopper, Qt::LeftButton, {},
                        stopper.actionGeometry(stopper.actions().first()).center());
    });
    EXPECT_TRUE(waitFor(nothingIsLeft)) << fromEntry;
    EXPECT_FALSE(view);
  }
}

} // namespace
