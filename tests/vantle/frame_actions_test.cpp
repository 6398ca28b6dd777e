// Menus, tool bars, shortcuts and the category filter.

#include <QAction>
#include <QComboBox>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <map>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoCube.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/QtText.h"

namespace {

/// The frame as it is by itself: no plug-in, the default one neither, adds entries.
class FrameTest : public VantleTest {
 protected:
  FrameTest() {
    SoPreferences::setValue("KSV_VANTLE_CONFIGURATION_FILE",
                            toSbString(writeFile("none.xml", "<configuration/>")));
  }
  ~FrameTest() override { SoPreferences::removeValue("KSV_VANTLE_CONFIGURATION_FILE"); }
};

QString const CATEGORIES =
    "Appearance|Callback|Camera|Group|Light|Manipulator|Nodekit|Property|Selection|Separator|Shape|Switch|"
    "Topology|"
    "Transform";

/// Texts of the entries with "-" for separators, submenus in parentheses.
QString describe(QList<QAction*> const& actions) {
  QStringList texts;
  for (QAction* action : actions) {
    if (action->isSeparator())
      texts << "-";
    else if (action->menu() && action->menu()->actions().first()->isVisible())
      texts << action->text() + " (" + describe(action->menu()->actions()) + ")";
    else
      texts << action->text();
  }
  return texts.join('|');
}

TEST_F(FrameTest, MenusAndBars) {
  start();
  QStringList menus;
  for (QAction* action : frame()->menuBar()->actions()) {
    menus << action->text() + ": " + describe(action->menu()->actions());
  }
  EXPECT_EQ(
      menus.join('\n').toStdString(),
      ("File: &New|&Open...|-|&Reload|-|&Close|-|&Save|Save &As...|-|&Export|-|&Print...|-|Recent "
       "&Files|-|&Quit\n"
       "&Edit: &Undo|&Redo|-|Cu&t|&Copy|&Paste|-|&Delete|-|&Preferences...\n"
       "&View: \n"
       "&TreeView: &Set Ignored/Enable|-|Show &All References|&Hide All References|-|Ne&xt|&Preferences...|-|"
       "&Find...|Find &Next|-|"
       "Bookmarks (Toggle Bookmark|-|Next Bookmark|Previous Bookmark|-|Clear All Bookmarks)|"
       "Filter (Toggle Filters|-|" +
       CATEGORIES +
       ")\n"
       "&?: &Contents|-|&About Vantle")
          .toStdString());

  QStringList bars;
  for (QToolBar* bar : {frame()->getFileToolbar(), frame()->getEditToolbar(), frame()->getSearchToolbar(),
                        frame()->getBookmarkToolbar(), frame()->getFilterToolbar()}) {
    bars << bar->windowTitle() + ": " + describe(bar->actions());
    EXPECT_EQ(frame()->toolBarArea(bar), Qt::TopToolBarArea);
  }
  EXPECT_EQ(bars.join('\n').toStdString(),
            ("File Tool Bar: &New|&Open...|-|&Reload|-|&Close|-|&Save|Save &As...|-|&Print...|&Export\n"
             "Edit Tool Bar: &Undo|&Redo|-|Cu&t|&Copy|&Paste|-|&Delete\n"
             "Search Tool Bar: &Find...||Find Pre&vious|Find &Next\n"
             "Bookmark Tool Bar: Toggle Bookmark|-|Previous Bookmark|Next Bookmark|-|Clear All Bookmarks\n"
             "Filter Tool Bar: Toggle Filters|-|" +
             CATEGORIES)
                .toStdString());
}

TEST_F(FrameTest, ShortcutsAndIcons) {
  start();
  std::map<QString, QString> const expected = {{"&New", "Ctrl+N"},
                                               {"&Open...", "Ctrl+O"},
                                               {"&Reload", "Ctrl+R"},
                                               {"&Save", "Ctrl+S"},
                                               {"&Print...", "Ctrl+P"},
                                               {"&Export", "Ctrl+E"},
                                               {"&Quit", "Ctrl+Q"},
                                               {"&Undo", "Ctrl+Z"},
                                               {"&Redo", "Ctrl+Y"},
                                               {"Cu&t", "Ctrl+X"},
                                               {"&Copy", "Ctrl+C"},
                                               {"&Paste", "Ctrl+V"},
                                               {"&Find...", "Ctrl+N"},
                                               {"Find &Next", "F3"},
                                               {"Find Pre&vious", "Shift+F3"},
                                               {"Toggle Bookmark", "Ctrl+F2"},
                                               {"Next Bookmark", "F2"},
                                               {"Previous Bookmark", "Shift+F2"},
                                               {"Clear All Bookmarks", "Alt+F2"},
                                               {"Show &All References", "F4"},
                                               {"&Hide All References", "Ctrl+F4"},
                                               {"Ne&xt", "F2"},
                                               {"Pre&vious", "Shift+F2"},
                                               {"&Contents", "Shift+F1"}};
  std::map<QString, QString> found;
  for (QAction* action : frame()->actions()) {
    if (!action->shortcut().isEmpty()) found[action->text()] = action->shortcut().toString();
  }
  EXPECT_EQ(found, expected);
  EXPECT_EQ(frame()->actions().size(), 52);

  // Whatever stands in a bar has a picture, which really is in the library.
  for (QToolBar* bar : frame()->findChildren<QToolBar*>()) {
    for (QAction* action : bar->actions()) {
      if (action->isSeparator() || action->text().isEmpty()) continue;
      EXPECT_FALSE(action->icon().availableSizes().isEmpty()) << qPrintable(action->text());
    }
  }
}

TEST_F(FrameTest, StatesAtStart) {
  start();
  for (QAction* action : {frame()->m_undoAction, frame()->m_redoAction, frame()->m_reloadAction,
                          frame()->m_ignoreEnableAction, frame()->m_nextReferenceAction}) {
    EXPECT_FALSE(action->isEnabled()) << qPrintable(action->text());
  }
  EXPECT_FALSE(frame()->m_customFilterAction->isChecked());
  EXPECT_TRUE(frame()->m_openAction->isEnabled());
}

TEST_F(FrameTest, TheHostOwnsItsScene) {
  SoRef<SoNode> const scene(new SoCube);
  startAttached(scene);
  EXPECT_FALSE(frame()->m_openAction->isEnabled());
  EXPECT_FALSE(frame()->m_closeAction->isEnabled());
  EXPECT_FALSE(frame()->getRecentFilesMenu()->isEnabled());
  EXPECT_TRUE(frame()->m_newAction->isEnabled());
  EXPECT_EQ(frame()->centralWidget(), static_cast<QWidget*>(tree()));
}

TEST_F(FrameTest, CategoryActionsMakeTheMask) {
  start(read("Separator { Cube { } Material { } }"));
  for (int i = 0; i < SoVantleMainFrame::CATEGORIES; ++i) {
    frame()->m_categoryActions[i]->trigger();
    EXPECT_EQ(tree()->getFilter(), 16383 - (1 << i));
    frame()->m_categoryActions[i]->trigger();
    EXPECT_EQ(tree()->getFilter(), 16383);
  }
  frame()->m_toggleFilterAction->trigger();
  EXPECT_EQ(tree()->getFilter(), 0);
  auto* const button =
      qobject_cast<QToolButton*>(frame()->getFilterToolbar()->widgetForAction(frame()->m_categoryActions[0]));
  EXPECT_FALSE(button->isChecked()) << "the bar shows what the actions are";
  EXPECT_TRUE(tree()->firstChild()->isHidden());
  // From nothing, one category alone.
  frame()->m_categoryActions[10]->trigger();
  EXPECT_EQ(tree()->getFilter(), 1024);
  frame()->m_toggleFilterAction->trigger();
  EXPECT_EQ(tree()->getFilter(), 16383);
  EXPECT_TRUE(frame()->m_categoryActions[0]->isChecked());
}

TEST_F(FrameTest, FindBoxGoesFromMatchToMatch) {
  start(read("Separator { Cube { } Group { Cube { } } Sphere { } }"));
  QComboBox* const box = frame()->getFindComboBox();
  box->setFocus();
  QTest::keyClicks(box, "cub");
  QTest::keyClick(box, Qt::Key_Return);
  SoTreeViewItem* const first = tree()->currentItem();
  ASSERT_TRUE(first);
  EXPECT_EQ(first->text(0), "Cube");
  frame()->m_findNextAction->trigger();
  EXPECT_NE(tree()->currentItem(), first);
  EXPECT_EQ(tree()->currentItem()->text(0), "Cube");
  frame()->m_findPreviousAction->trigger();
  EXPECT_EQ(tree()->currentItem(), first);
}

TEST_F(FrameTest, BookmarksAreWalkedRound) {
  start(read("Separator { Cube { } Cone { } Sphere { } }"));
  SoTreeViewItem* const root = tree()->firstChild();
  for (int i : {0, 2}) {
    tree()->setCurrentItem(root->child(i));
    frame()->m_toggleBookmarkAction->trigger();
  }
  frame()->m_nextBookmarkAction->trigger();
  EXPECT_EQ(tree()->currentItem(), root->child(0));
  frame()->m_previousBookmarkAction->trigger();
  EXPECT_EQ(tree()->currentItem(), root->child(2));
  frame()->m_clearBookmarksAction->trigger();
  frame()->m_nextBookmarkAction->trigger();
  EXPECT_EQ(tree()->currentItem(), root->child(2));
}

} // namespace
