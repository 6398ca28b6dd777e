// Who owns the shared actions, the menus of the states, and the keys of the tree.

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QStatusBar>
#include <QTest>

#include "kestrava/nodes/SoSelection.h"
#include "tests/vantle/UrlCatcher.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/inspect/SoNodeOverviewList.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/SoTreeViewState.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

class StatesTest : public VantleTest {
 protected:
  void startWith(std::string const& scene) {
    start(read(scene));
    // A selected path holds its nodes, which counts as references.
    VntServicesImpl::getImplInstance()->setSelectionAllowed(false);
    tree()->getGraphSelection()->deselectAll();
  }
  SoTreeViewItem* row(int index) const { return tree()->firstChild()->child(index); }
  // Without a window manager no window is active, and none of its widgets is told of the focus.
  static void focus(QWidget* panel) {
    QFocusEvent event(QEvent::FocusIn);
    QApplication::sendEvent(panel, &event);
  }
  bool saysDeleting() const {
    bool const says = frame()->statusBar()->currentMessage() == "Deleting nodes is not available yet.";
    frame()->statusBar()->clearMessage();
    return says;
  }
  /// What the menu of a state that forwards its events shows for a place of the tree; empty when there is none.
  std::string menuAt(SoTreeViewState& state, QPoint const& place) const {
    QStringList texts;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!menu) return;
      look.stop();
      for (QAction* action : menu->actions()) texts << (action->isSeparator() ? QString("-") : action->text());
      menu->close();
    });
    look.start(5);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, tree()->viewport()->mapToGlobal(place));
    state.createContextPopupMenu(&event);
    return texts.join('|').toStdString();
  }
};

TEST_F(StatesTest, DeleteWorksInOnePanel) {
  startWith("Separator { Cube { } }");
  tree()->setCurrentItem(row(0));
  SoFieldWatch* const watch = edition()->getFieldWatch();
  SoNodeOverviewList* const fields = edition()->getTabNodeOverview()->getCurrentNodeOverview()->getList();
  for (int i = 0; i < 2; ++i) commands()->setFieldWatch(static_cast<SoFieldItem*>(fields->topLevelItem(i)));
  ASSERT_EQ(watch->topLevelItemCount(), 2);
  QAction* const deletes = frame()->m_deleteAction;

  // Coming back again and again connects no slot twice.
  for (QWidget* panel : std::initializer_list<QWidget*>{tree(), watch, tree(), tree(), watch}) focus(panel);
  watch->setCurrentItem(watch->topLevelItem(0));
  deletes->trigger();
  EXPECT_EQ(watch->topLevelItemCount(), 1);
  EXPECT_FALSE(saysDeleting());
  focus(tree());
  deletes->trigger();
  EXPECT_EQ(watch->topLevelItemCount(), 1);
  EXPECT_TRUE(saysDeleting());
}

TEST_F(StatesTest, ActionsOfReferences) {
  startWith("Separator { Cube { } DEF m Material { } Group { USE m } }");
  focus(tree());
  auto const enabled = [this] {
    return QStringList{frame()->m_showAllReferencesAction->isEnabled() ? "show" : "",
                       frame()->m_hideAllReferencesAction->isEnabled() ? "hide" : "",
                       frame()->m_nextReferenceAction->isEnabled() ? "next" : "",
                       frame()->m_previousReferenceAction->isEnabled() ? "previous" : ""}
        .join(' ')
        .trimmed()
        .toStdString();
  };
  tree()->setCurrentItem(row(0));
  EXPECT_EQ(enabled(), "");
  tree()->setCurrentItem(row(1));
  EXPECT_EQ(enabled(), "show");
  frame()->m_showAllReferencesAction->trigger();
  EXPECT_EQ(enabled(), "hide next previous");
  frame()->m_hideAllReferencesAction->trigger();
  EXPECT_EQ(enabled(), "show");
  // Another panel has them as they were.
  focus(edition()->getFieldWatch());
  tree()->setCurrentItem(row(0));
  EXPECT_EQ(enabled(), "show");
}

TEST_F(StatesTest, MenusForCodeThatForwardsItsEvents) {
  startWith(R"(Separator { Cube { } DEF m Material { } Group { USE m }
                           ShapeKit { appearance AppearanceKit { } } })");
  tree()->expandAll(tree()->firstChild());
  SoTreeViewState state(tree());
  auto const menuOf = [&](SoTreeViewItem* row) {
    tree()->scrollToItem(row);
    return menuAt(state, tree()->visualItemRect(row).center());
  };
  std::string const each = "Expand All|Add to Node Overview|Add Node|&Save scene graph|&Delete";
  std::string const ignore = "|-|&Set Ignored/Enable";
  EXPECT_EQ(menuOf(row(0)), each + ignore);
  EXPECT_EQ(menuOf(row(1)), each + ignore + "|-|Show &All References");
  row(1)->setShowRefImage(true);
  EXPECT_EQ(menuOf(row(1)), each + ignore + "|-|Show &All References|&Hide All References");
  SoTreeViewItem* part = nullptr;
  for (SoTreeViewItem* r = row(3); r && !part; r = SoVantleTreeView::itemBelowInTree(r)) {
    if (r->baseKitPart()) part = r;
  }
  ASSERT_TRUE(part);
  EXPECT_EQ(menuOf(part).substr(0, each.size()), each);
  EXPECT_EQ(menuOf(part).find("Ignored"), std::string::npos);
  part->setIgnoreFlag(true);
  EXPECT_EQ(menuOf(part), "");
  SoTreeViewItem* const cube = row(0);
  cube->setIgnoreFlag(true);
  EXPECT_EQ(menuOf(cube), "&Set Ignored/Enable");
  EXPECT_EQ(menuAt(state, tree()->viewport()->rect().bottomRight()), "");
}

TEST_F(StatesTest, DeleteAndReferencePageByKey) {
  startWith("Separator { IndexedFaceSet { } }");
  UrlCatcher pages;
  tree()->setCurrentItem(row(0));
  QTest::keyPress(tree(), Qt::Key_Delete);
  EXPECT_FALSE(saysDeleting()) << "on release";
  // A key that is held.
  QKeyEvent held(QEvent::KeyRelease, Qt::Key_Delete, {}, {}, true);
  QApplication::sendEvent(tree(), &held);
  EXPECT_FALSE(saysDeleting());
  QTest::keyRelease(tree(), Qt::Key_Delete);
  EXPECT_TRUE(saysDeleting());

  QTest::keyClick(tree(), Qt::Key_F1);
  ASSERT_EQ(pages.urls.size(), 1);
  EXPECT_TRUE(pages.urls[0].endsWith("/RefManCpp/class_so_indexed_face_set.html")) << pages.urls[0].toStdString();
  // Shift+F1 is a shortcut; what the tree sees of it is the release.
  QTest::keyRelease(tree(), Qt::Key_F1);
  EXPECT_EQ(pages.urls.size(), 1);

  tree()->setCurrentItem(nullptr);
  QTest::keyClick(tree(), Qt::Key_Delete);
  QTest::keyClick(tree(), Qt::Key_F1);
  QTest::keyClick(tree(), Qt::Key_Asterisk);
  EXPECT_FALSE(saysDeleting());
  EXPECT_EQ(pages.urls.size(), 1);
}

} // namespace
