// From the 3D view to rows and back: one thing, and all things under the pointer.

#include <QMenu>
#include <QStatusBar>
#include <QTest>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "kestrava/render/SoSceneManager.h"
#include "kestrava_qt/SoQtExaminerViewer.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

char const camera[] =
    "OrthographicCamera { position 0 0 10 nearDistance 1 farDistance 30 height 4 } "
    "LightModel { model BASE_COLOR } ";

/// The examiner shows the scene as its camera does, four units high; the user picks in it.
class PickTest : public VantleTest {
 protected:
  void show(std::string const& children) {
    start(read("DEF root Separator { " + std::string(camera) + children + "}"));
    examiner()->setViewing(false);
  }
  SoQtExaminerViewer* examiner() const { return viewer()->getExaminer(); }
  QWidget* view() const { return examiner()->getViewWidget(); }
  void click(double x, double y, Qt::KeyboardModifiers keys = {}) {
    double const unit = view()->height() / 4.0;
    QPoint const at(qRound(view()->width() / 2.0 + x * unit), qRound(view()->height() / 2.0 - y * unit));
    QTest::mouseClick(view(), Qt::LeftButton, keys, at);
  }
  /// The menu of all that lies there.
  QMenu* list(double x, double y) {
    EXPECT_TRUE(waitFor([this] { return !menu(); })) << "the last one is still there";
    click(x, y, Qt::ControlModifier);
    return menu();
  }
  QMenu* menu() const { return tree()->findChild<QMenu*>("pickMenu"); }
  /// The entries that can be chosen, without their distances.
  static QStringList entries(QMenu* menu) {
    QStringList texts;
    for (QAction* action : menu->actions()) {
      if (action->isEnabled() && !action->isSeparator()) texts << action->text().section('\t', 0, 0);
    }
    return texts;
  }
  bool isInSight(SoTreeViewItem* row) const {
    // How far to the right a deep row stands does not matter.
    QRect const area = tree()->visualItemRect(row);
    return row && area.height() > 0 && area.top() >= 0 && area.bottom() <= tree()->viewport()->height();
  }
  /// The tail of what is marked in the view, and its parent.
  std::pair<SoNode*, SoNode*> marked() const {
    SoSelection* const selection = tree()->getGraphSelection();
    if (selection->getNumSelected() != 1) return {};
    SoRef<SoPath> const path = selection->getPath(0);
    return {path->getTail(), path->getNode(path->getLength() - 2)};
  }
  SoTreeViewItem* rowOf(SoNode* node, SoNode* parent) const {
    for (SoTreeViewItem* row = tree()->firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
      if (row->getNode() == node && row->getParentNode() == parent) return row;
    }
    return nullptr;
  }
  static SoNode* named(char const* name) {
    return static_cast<SoNode*>(SoBase::getNamedBase(name, SoNode::getClassTypeId()));
  }
};

TEST_F(PickTest, AClickGoesToTheRightPlaceOfASharedNode) {
  std::string many;
  for (int i = 0; i < 60; ++i) many += "Separator { } ";
  show("DEF left Separator { Translation { translation -1 0 0 } DEF box Cube { width 0.8 height 0.8 } } " +
       many + "DEF right Separator { Translation { translation 1 0 0 } USE box } ");
  for (auto const& [x, parent] :
       {std::pair(1.0, "right"), std::pair(-1.0, "left"), std::pair(1.0, "right")}) {
    SoTreeViewItem* const row = rowOf(named("box"), named(parent));
    ASSERT_TRUE(row);
    click(x, 0);
    EXPECT_EQ(tree()->currentItem(), row) << parent;
    EXPECT_TRUE(isInSight(row)) << parent;
    EXPECT_EQ(marked(), std::pair(named("box"), named(parent)));
    EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), named("box"));
  }
  // Where nothing is, all stays.
  SoTreeViewItem* const before = tree()->currentItem();
  click(0, 1.8);
  EXPECT_EQ(tree()->currentItem(), before);
  EXPECT_EQ(marked(), std::pair(named("box"), named("right")));
  // A click on what is current marks it again.
  tree()->getGraphSelection()->deselectAll();
  click(1, 0);
  EXPECT_EQ(marked(), std::pair(named("box"), named("right")));
}

TEST_F(PickTest, InsideOfWhatHasHiddenChildren) {
  QString const file = writeFile("part.kv", "#Kestrava V1.0 ascii\nSeparator { Separator { Cube { } } }\n");
  struct {
    std::string scene;
    QStringList types; // of the rows below the root
  } const cases[] = {
      {"ShapeKit { shape Cube { } }", {"ShapeKit", "Separator", "Cube"}},
      {"SeparatorKit { childList NodeKitListPart { containerNode Group { ShapeKit { shape Cube { } } } } }",
       {}},
      {"File { name \"" + file.toStdString() + "\" }", {"File", "Separator", "Separator", "Cube"}},
      {"WWWInline { }", {"WWWInline", "Separator", "Cube"}},
  };
  show("");
  for (auto const& c : cases) {
    SoRef<SoNode> const root(read("Separator { " + std::string(camera) + c.scene + " }"));
    viewer()->setScene(root, true);
    if (auto* const net = dynamic_cast<SoWWWInline*>((*root->getChildren())[2])) {
      net->setChildData(read("Separator { Cube { } }"));
    }
    click(0.2, 0.2);
    ASSERT_TRUE(tree()->currentItem()) << c.scene;
    EXPECT_TRUE(isInSight(tree()->currentItem())) << c.scene;
    EXPECT_EQ(tree()->currentItem()->text(0), "Cube") << c.scene;
    QStringList types;
    for (SoTreeViewItem* row = tree()->currentItem(); row->parent(); row = row->parent())
      types.prepend(row->text(0));
    if (!c.types.isEmpty()) {
      EXPECT_EQ(types, c.types);
    }
    EXPECT_EQ(marked().first, tree()->currentItem()->getNode()) << c.scene;
  }
}

TEST_F(PickTest, AHandleGoesToItsManipulator) {
  show("DEF manip TrackballManip { } Cube { width 0.2 height 0.2 depth 0.2 } ");
  bool found = false;
  for (double x = 0; x < 1.9 && !found; x += 0.05) {
    click(x, 0);
    found = tree()->currentItem() && tree()->currentItem()->getNode() == named("manip");
  }
  EXPECT_TRUE(found);
  EXPECT_EQ(entries(list(0, 0)).filter("TrackballManip").size(), 1) << "all its handles are one entry";
}

/// Three cubes behind each other, the nearest last in the scene; the outer ones are one node.
char const stacked[] =
    "DEF far Separator { Translation { translation 0 0 -2 } DEF box Cube { width 0.8 height 0.8 } } "
    "DEF middle Separator { DEF ball Sphere { radius 0.4 } } "
    "DEF near Separator { Translation { translation 0 0 2 } USE box } ";

TEST_F(PickTest, AllUnderThePointer) {
  show(stacked);
  tree()->setCurrentItem(rowOf(named("middle"), named("root")));
  auto const before = marked();
  QMenu* const menu = list(0.1, 0.1);
  ASSERT_TRUE(menu);
  ASSERT_TRUE(menu->isVisible());
  EXPECT_EQ(entries(menu),
            QStringList({"Cube \"box\"   in  root / near", "Sphere \"ball\"   in  root / middle",
                         "Cube \"box\"   in  root / far"}));
  QList<double> distances;
  for (QAction* action : menu->actions()) {
    if (action->isEnabled() && !action->isSeparator())
      distances << action->text().section('\t', 1).toDouble();
  }
  EXPECT_NEAR(distances[0], 7, 0.01);
  EXPECT_NEAR(distances[2], 11, 0.01);
  EXPECT_EQ(tree()->currentItem()->getNode(), named("middle")) << "nothing is chosen yet";

  // An entry that is gone to is marked, and Escape leaves everything as it was.
  QTest::keyClick(menu, Qt::Key_Down);
  EXPECT_EQ(marked(), std::pair(named("box"), named("near")));
  QTest::keyClick(menu, Qt::Key_Down);
  QTest::keyClick(menu, Qt::Key_Down);
  EXPECT_EQ(marked(), std::pair(named("box"), named("far")));
  QTest::keyClick(menu, Qt::Key_Escape);
  EXPECT_EQ(marked(), before);
  EXPECT_EQ(tree()->currentItem()->getNode(), named("middle"));

  // Choosing goes to the row.
  QMenu* const again = list(0.1, 0.1);
  QTest::keyClick(again, Qt::Key_Up);
  QTest::keyClick(again, Qt::Key_Return);
  EXPECT_EQ(tree()->currentItem(), rowOf(named("box"), named("far")));
  EXPECT_TRUE(isInSight(tree()->currentItem()));
  EXPECT_EQ(marked(), std::pair(named("box"), named("far")));
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), named("box"));
  EXPECT_EQ(viewer()->getMode(), 0);

  // Nothing there.
  QMenu* const empty = list(0, 1.8);
  ASSERT_TRUE(empty);
  EXPECT_EQ(entries(empty), QStringList());
  EXPECT_EQ(empty->actions().first()->text(), "Nothing is under the pointer");
}

TEST_F(PickTest, EntriesThatReadTheSameAreToldApart) {
  std::string cubes;
  for (int i = 0; i < 40; ++i) {
    cubes += "Separator { Separator { Separator { Translation { translation 0 0 " + std::to_string(-i * 0.1) +
             " } Cube { width 1 height 1 depth 0.01 } } } } ";
  }
  show("DEF one Separator { Cube { } Translation { translation 0 0 -1 } Cube { } } " + cubes);
  QMenu* const menu = list(0.1, 0.1);
  QStringList texts = entries(menu);
  EXPECT_EQ(texts.size(), 30);
  EXPECT_EQ(QSet<QString>(texts.begin(), texts.end()).size(), 30) << texts.join('\n').toStdString();
  EXPECT_EQ(texts.first(), "Cube [0]   in  root / one");
  EXPECT_TRUE(texts.contains("Cube   in  Separator[3] / Separator / Separator")) << texts[1].toStdString();
  EXPECT_EQ(menu->actions().last()->text(), "and 12 more, farther away");
  EXPECT_FALSE(menu->actions().last()->isEnabled());
}

TEST_F(PickTest, TheGraphMayChangeWhileTheListIsOpen) {
  show(stacked);
  auto* const root = static_cast<SoSeparator*>(tree()->firstChild()->getNode());
  QMenu* menu = list(0.1, 0.1);
  // Others come before it: it is found all the same.
  root->insertChild(new SoSeparator, 0);
  static_cast<SoSeparator*>(named("near"))->insertChild(new SoSeparator, 0);
  QTest::keyClick(menu, Qt::Key_Down);
  EXPECT_EQ(marked(), std::pair(named("box"), named("near")));
  QTest::keyClick(menu, Qt::Key_Return);
  EXPECT_EQ(tree()->currentItem(), rowOf(named("box"), named("near")));

  // It goes: the current row stays.
  menu = list(0.1, 0.1);
  SoTreeViewItem* const stays = rowOf(named("ball"), named("middle"));
  tree()->setCurrentItem(stays);
  QTest::keyClick(menu, Qt::Key_Down);
  root->removeChild(named("near"));
  QTest::keyClick(menu, Qt::Key_Return);
  EXPECT_EQ(tree()->currentItem(), stays);
  EXPECT_EQ(frame()->statusBar()->currentMessage(), "What was picked is not in the scene any more");

  // A new scene: the list is of the old one.
  menu = list(0.1, 0.1);
  ASSERT_TRUE(menu->isVisible());
  viewer()->setScene(read("Separator { Cube { } }"), true);
  EXPECT_TRUE(waitFor([this] { return !this->menu(); }));
}

TEST_F(PickTest, TheSessionMayEndWhileTheListIsOpen) {
  show(stacked);
  SoRef<SoNode> const root(tree()->firstChild()->getNode());
  SoNode* const box = named("box");
  ASSERT_TRUE(list(0.1, 0.1));
  QTest::keyClick(menu(), Qt::Key_Down);
  SoVantleImpl::stop(true);
  EXPECT_EQ(root->getRefCount(), 1);
  EXPECT_EQ(box->getRefCount(), 2);
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(PickTest, OfAHostsView) {
  SoRef<SoNode> const root(read("DEF root Separator { " + std::string(camera) + stacked + "}"));
  startAttached(root);
  tree()->listPicked(SbViewportRegion(100, 100), SbVec2s(52, 52), tree()->getGraphSelection());
  ASSERT_TRUE(menu());
  EXPECT_EQ(entries(menu()).size(), 3);
  // A second click replaces the list.
  tree()->listPicked(SbViewportRegion(100, 100), SbVec2s(52, 52), tree()->getGraphSelection());
  EXPECT_TRUE(waitFor([this] { return tree()->findChildren<QMenu*>("pickMenu").size() == 1; }));
  QTest::keyClick(menu(), Qt::Key_Up);
  QTest::keyClick(menu(), Qt::Key_Return);
  EXPECT_EQ(tree()->currentItem(), rowOf(named("box"), named("far")));
  // A plain click, as the host reports it.
  SoVantleImpl::setPickAction(SbViewportRegion(100, 100), SbVec2s(52, 52));
  EXPECT_EQ(tree()->currentItem(), rowOf(named("box"), named("near")));
}

} // namespace
