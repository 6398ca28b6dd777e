// The search: what fits, the find box with its options, and what the status bar says.

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QStatusBar>
#include <QTest>
#include <random>

#include "kestrava/nodes/SoCone.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoFindBox.h"
#include "vantle/frame/SoTreeStatus.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

char const sceneText[] = R"(Separator {
  DEF lamp PointLight { }
  DEF left Separator { DEF m Material { } DEF Ball Sphere { } }
  Switch { USE m DEF Last Cube { } }
})";

class FindTest : public VantleTest {
 protected:
  QString message() const { return frame()->statusBar()->currentMessage(); }

  /// As a person searches: types over what stands in the box and presses Return.
  void search(QString const& text) {
    SoFindBox* const box = frame()->getFindBox();
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
  }

  /// Opens the menu of the box and chooses an entry.
  void choose(QString const& option) {
    frame()->getFindBox()->lineEdit()->actions().first()->trigger();
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    for (QAction* action : menu->actions()) {
      if (action->text() == option)
        return QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
    }
    FAIL() << qPrintable(option);
  }

  QStringList history() const {
    QStringList texts;
    for (int i = 0; i < frame()->getFindBox()->count(); ++i) texts << frame()->getFindBox()->itemText(i);
    return texts;
  }
};

TEST_F(FindTest, OptionsOfTheBox) {
  start(read(sceneText));
  SoTreeViewItem* const root = tree()->firstChild();
  SoTreeViewItem* const ball = root->child(1)->child(1);
  EXPECT_EQ(frame()->getFindBox()->lineEdit()->placeholderText(), "By Type");
  search("ball");
  EXPECT_EQ(message(), "No row whose type contains \"ball\".");
  choose("By Name");
  EXPECT_EQ(commands()->getFindMode(), SoVantleTreeView::FIND_NAME);
  search("ball");
  EXPECT_EQ(tree()->currentItem(), ball);
  EXPECT_EQ(message(), "") << "nothing is left of what was said before";

  choose("Case Sensitive");
  search("ball");
  EXPECT_EQ(message(), "No row whose name contains \"ball\", upper and lower case told apart.");
  choose("Exact Match");
  EXPECT_EQ(frame()->getFindBox()->lineEdit()->placeholderText(), "By Name, Case Sensitive, Exact Match");
  search("Bal");
  EXPECT_EQ(message(), "No row whose name is \"Bal\", upper and lower case told apart.");
  choose("Case Sensitive");
  choose("Exact Match");

  // A value of no mode changes nothing, and what others set the menu shows.
  commands()->setFindMode(7);
  EXPECT_EQ(commands()->getFindMode(), SoVantleTreeView::FIND_NAME);
  choose("By Id");
  search(QString::number(root->getNode()->getNodeId()));
  EXPECT_EQ(tree()->currentItem(), root);
  commands()->setFindMode(SoVantleTreeView::FIND_ADDRESS);
  search("0x" + QString::number(reinterpret_cast<quintptr>(ball->getNode()), 16));
  EXPECT_EQ(tree()->currentItem(), ball);
  search("zz");
  EXPECT_EQ(message(), "No row whose address contains \"zz\".");
  EXPECT_EQ(tree()->currentItem(), ball);
  search("");
  EXPECT_EQ(message(), "Nothing to look for: the find box is empty.");
}

TEST_F(FindTest, DirectionsAndTheEnd) {
  start(read(sceneText));
  SoTreeViewItem* const root = tree()->firstChild();
  SoTreeViewItem* const left = root->child(1);
  tree()->setCurrentItem(root);
  search("SEPARATOR");
  EXPECT_EQ(tree()->currentItem(), left);
  EXPECT_EQ(message(), "");
  frame()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(frame()));
  QTest::keyClick(frame(), Qt::Key_F3);
  EXPECT_EQ(tree()->currentItem(), root);
  EXPECT_EQ(message(), "Went on from the first row.");
  frame()->m_findPreviousAction->trigger();
  EXPECT_EQ(tree()->currentItem(), left);
  EXPECT_EQ(message(), "Went on from the last row.");

  // Next and previous have their direction, Return the chosen one; no other flag is touched.
  int const flags = SoVantleTreeView::FIND_BACKWARD | SoVantleTreeView::FIND_CASE_SENSITIVE;
  commands()->setFindFlags(flags);
  search("Separ");
  EXPECT_EQ(tree()->currentItem(), root);
  commands()->findNext();
  EXPECT_EQ(tree()->currentItem(), left);
  EXPECT_EQ(message(), "");
  commands()->findPrevious();
  EXPECT_EQ(tree()->currentItem(), root);
  EXPECT_EQ(commands()->getFindFlags(), flags);
  search("separ");
  EXPECT_EQ(message(), "No row whose type contains \"separ\", upper and lower case told apart.");

  commands()->setFindFlags(0);
  search("light");
  EXPECT_EQ(tree()->currentItem(), root->child(0));
  commands()->findNext();
  EXPECT_EQ(message(), "No other row fits.");

  // A row that the filter hides is found and said to be hidden; so is one below a hidden row.
  frame()->m_categoryActions[9]->trigger(); // separators
  search("Sphere");
  EXPECT_EQ(tree()->currentItem(), left->child(1));
  EXPECT_EQ(message(), "The filter hides this row.");
}

TEST_F(FindTest, TheFilterAndTheCurrentRow) {
  start(read(sceneText));
  SoTreeViewItem* const ball = tree()->firstChild()->child(1)->child(1);
  tree()->showItem(ball);
  frame()->m_categoryActions[10]->trigger(); // shapes
  EXPECT_TRUE(ball->isHidden());
  EXPECT_EQ(tree()->currentItem(), ball) << "the panels go on showing its node";
  QTest::keyClick(tree(), Qt::Key_Down);
  ASSERT_TRUE(tree()->currentItem());
  EXPECT_FALSE(tree()->currentItem()->isHidden());

  // It stays for the next scene, and bookmarks in hidden rows are found.
  viewer()->setScene(read("Separator { Cube { } Group { Sphere { } Material { } } }"), true);
  SoTreeViewItem* const root = tree()->firstChild();
  tree()->expandAll(root);
  EXPECT_TRUE(root->child(0)->isHidden() && root->child(1)->child(0)->isHidden());
  EXPECT_FALSE(root->isHidden() || root->child(1)->isHidden() || root->child(1)->child(1)->isHidden());
  EXPECT_TRUE(tree()->visualItemRect(root->child(0)).isEmpty());
  commands()->nextBookmark();
  EXPECT_EQ(message(), "There are no bookmarks.");
  root->child(0)->setBookmarked(true);
  commands()->nextBookmark();
  EXPECT_EQ(tree()->currentItem(), root->child(0));
  EXPECT_EQ(message(), "The filter hides this row.");
  commands()->previousBookmark();
  EXPECT_EQ(message(), "This is the only bookmark. The filter hides this row.");
}

TEST_F(FindTest, OnlyWhatWasFoundIsRemembered) {
  start(read(sceneText));
  EXPECT_EQ(history(), QStringList());
  for (char const* text : {"cube", "nothing", "sphere", "Cube", "cube", "sph"}) search(text);
  EXPECT_EQ(history(), QStringList({"sph", "cube", "Cube", "sphere"}));
  EXPECT_EQ(frame()->getFindBox()->currentText(), "sph") << "a beginning is not made longer";
  for (int i = 0; i < SoFindBox::MAX_TEXTS + 5; ++i) {
    static_cast<SoGroup*>(tree()->firstChild()->getNode())->addChild(new SoCone);
    tree()->lastItem()->getNode()->setName(SbString::format("cone%d", i));
  }
  commands()->setFindMode(SoVantleTreeView::FIND_NAME);
  for (int i = 0; i < SoFindBox::MAX_TEXTS + 5; ++i) search("cone" + QString::number(i));
  EXPECT_EQ(history().size(), SoFindBox::MAX_TEXTS);
  EXPECT_EQ(history().first(), "cone" + QString::number(SoFindBox::MAX_TEXTS + 4));
}

TEST_F(FindTest, RowsThatAreNotBuilt) {
  SoRef<SoSeparator> scene(new SoSeparator);
  for (int i = 0; i < 12; ++i) {
    SoRef<SoSeparator> const above(new SoSeparator);
    above->addChild(scene);
    above->addChild(scene);
    scene = above;
  }
  start();
  tree()->setRowLimit(100);
  viewer()->setScene(scene, true);
  ASSERT_TRUE(tree()->isAnyUnbuilt());
  search("Cube");
  EXPECT_EQ(message(), "No row whose type contains \"Cube\". " +
                           SoTreeStatus::grouped(tree()->placesNotBuilt()) +
                           " places have no row yet and were not searched.");
  viewer()->setScene(nullptr, true);
}

/// As the search is described, one row after the other.
SoTreeViewItem* slowFind(SoVantleTreeView const& tree, int mode, QString const& text, int flags) {
  std::vector<SoTreeViewItem*> rows;
  for (SoTreeViewItem* row = tree.firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row))
    rows.push_back(row);
  if (flags & SoVantleTreeView::FIND_BACKWARD) std::reverse(rows.begin(), rows.end());
  auto const at = std::find(rows.begin(), rows.end(), tree.currentItem());
  if (at != rows.end()) std::rotate(rows.begin(), at + 1, rows.end());
  for (SoTreeViewItem* row : rows) {
    QString const values[] = {row->text(0), row->text(1),
                              "0x" + QString::number(reinterpret_cast<quintptr>(row->getNode()), 16),
                              QString::number(row->getNode()->getNodeId())};
    bool const letters = flags & SoVantleTreeView::FIND_CASE_SENSITIVE;
    QString const value = letters ? values[mode] : values[mode].toLower();
    QString const wanted = letters ? text : text.toLower();
    if (flags & SoVantleTreeView::FIND_EXACT ? value == wanted : !wanted.isEmpty() && value.contains(wanted))
      return row;
  }
  return nullptr;
}

TEST_F(FindTest, AgreesWithASlowOne) {
  // The Kelvin sign is an ordinary k in lower case.
  QStringList const names = {"",
                             "Ka",
                             "kA_1",
                             QString::fromUtf8("K\u00c4se"),
                             QString::fromUtf8("\u212aa"),
                             "aKaKab",
                             "0x1",
                             QString::fromUtf8("\u00e4"),
                             "_",
                             "A"};
  SoRef<SoSeparator> const scene(new SoSeparator);
  std::mt19937 random(20261121);
  std::vector<SoGroup*> groups{scene};
  for (int i = 0; i < 60; ++i) {
    SoNode* const node = i % 3 ? static_cast<SoNode*>(new SoCube) : new SoSeparator;
    node->setName(toSbString(names[random() % names.size()]));
    groups[random() % groups.size()]->addChild(node);
    if (i % 3 == 0) groups.push_back(static_cast<SoGroup*>(node));
  }
  WatchedTree tree(scene);
  std::vector<SoTreeViewItem*> rows{nullptr};
  for (SoTreeViewItem* row = tree.root(); row; row = SoVantleTreeView::itemBelowInTree(row))
    rows.push_back(row);
  int found = 0;
  for (int i = 0; i < 20000; ++i) {
    tree.view.setCurrentItem(rows[random() % rows.size()]);
    int const mode = random() % 4, flags = random() % 8;
    QString text = names[random() % names.size()];
    SoTreeViewItem const* const some = rows[1 + random() % (rows.size() - 1)];
    if (mode == 0) text = some->text(0);
    if (mode == 2) text = "0x" + QString::number(reinterpret_cast<quintptr>(some->getNode()), 16);
    if (mode == 3) text = QString::number(some->getNode()->getNodeId());
    if (random() % 2) text = text.mid(random() % 4, 1 + random() % 6);
    if (random() % 8 == 0) text = text.toUpper();
    SoTreeViewItem const* const expected = slowFind(tree.view, mode, text, flags);
    ASSERT_EQ(tree.view.find(mode, text, flags), expected) << mode << ' ' << flags << ' ' << qPrintable(text);
    found += expected != nullptr;
  }
  EXPECT_GT(found, 5000);
  EXPECT_LT(found, 19500);
}

} // namespace
