// The tree as a person uses it, and what goes through its rows.

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/sensors/SoNodeSensor.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

using TreeTest = VantleTest;

char const sceneText[] = R"(Separator {
  DEF lamp PointLight { }
  DEF left Separator { DEF m Material { } Cube { } }
  Switch { USE m DEF Ball Sphere { } }
  IndexedFaceSet { vertexProperty VertexProperty { } }
})";

void click(SoVantleTreeView* tree, SoTreeViewItem* row, int column) {
  QModelIndex const cell = tree->indexFromItem(row, column);
  tree->scrollTo(cell);
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(cell).center());
}

TEST_F(TreeTest, ASceneOnTheScreen) {
  start(read(sceneText));
  ASSERT_TRUE(tree()->firstChild());
  EXPECT_TRUE(tree()->firstChild()->isExpanded());
  EXPECT_EQ(tree()->currentItem(), tree()->firstChild());
  EXPECT_EQ(tree()->visualItemRect(tree()->firstChild()).height(), 27);
  EXPECT_EQ(edition()->getTabNodeOverview()->count(), 1);
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), tree()->firstChild()->getNode());
  QStringList labels;
  for (int i = 0; i < tree()->columnCount(); ++i) labels << tree()->headerItem()->text(i);
  EXPECT_EQ(labels, QStringList({"Type", "Name", "Ref. Count", "", ""}));

  // A row that is clicked is shown, selected in the view and told to the services.
  SoTreeViewItem* const left = tree()->firstChild()->child(1);
  click(tree(), left, 0);
  EXPECT_EQ(tree()->currentItem(), left);
  EXPECT_EQ(edition()->getTabNodeOverview()->count(), 1);
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), left->getNode());
  EXPECT_EQ(VntServices::getInstance()->getSelectedNode(), left->getNode());
  ASSERT_EQ(tree()->getGraphSelection()->getNumSelected(), 1);
  SoRef<SoPath> const path = tree()->getGraphSelection()->getPath(0);
  EXPECT_EQ(path->getHead(), tree()->getGraphSelection());
  EXPECT_EQ(path->getTail(), left->getNode());

  // And the other way round.
  SoRef<SoPath> other(new SoPath(tree()->getGraphSelection()));
  other->append(0);
  other->append(2);
  other->append(1);
  tree()->getGraphSelection()->deselectAll();
  tree()->getGraphSelection()->select(other);
  SoTreeViewItem* const ball = tree()->firstChild()->child(2)->child(1);
  EXPECT_EQ(tree()->currentItem(), ball);
  EXPECT_TRUE(ball->parent()->isExpanded());
  EXPECT_EQ(SoVantleStateManager::currentStateId(), "TreeViewState");
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), ball->getNode());

  // A row below a field is shown but has no place of its own in the view.
  SoTreeViewItem* const held = tree()->firstChild()->child(3)->child(0);
  tree()->setCurrentItem(held);
  EXPECT_EQ(tree()->getGraphSelection()->getPath(0)->getTail(), ball->getNode());
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), held->getNode());

  VntServicesImpl::getImplInstance()->setSelectionAllowed(false);
  tree()->setCurrentItem(left);
  EXPECT_EQ(tree()->getGraphSelection()->getPath(0)->getTail(), ball->getNode());

  // Emptying the scene leaves nothing behind.
  viewer()->setScene(nullptr, true);
  EXPECT_EQ(tree()->firstChild(), nullptr);
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), nullptr);
}

TEST_F(TreeTest, InspectingChangesNothing) {
  SoRef<SoSeparator> const scene(static_cast<SoSeparator*>(read(sceneText)));
  std::vector<std::pair<SoNode*, std::uint64_t>> ids;
  std::vector<int> references;
  SoVantleTreeView reader;
  reader.initTree(scene);
  for (SoTreeViewItem* row = reader.firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
    ids.emplace_back(row->getNode(), row->getNode()->getNodeId());
    references.push_back(row->getRefCount());
  }
  start(scene);
  int notifications = 0;
  SoNodeSensor sensor([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &notifications);
  sensor.setPriority(0);
  sensor.attach(scene);
  tree()->expandAll(tree()->firstChild());
  for (SoTreeViewItem* row = tree()->firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
    tree()->setCurrentItem(row);
    commands()->setNodeOverview(nullptr, true);
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(notifications, 0);
  tree()->getGraphSelection()->deselectAll(); // a selected path holds its nodes
  viewer()->setScene(nullptr, true);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    EXPECT_EQ(ids[i].first->getNodeId(), ids[i].second);
    EXPECT_EQ(ids[i].first->getRefCount(), references[i]) << i;
  }
}

TEST_F(TreeTest, Filter) {
  WatchedTree tree(read(sceneText));
  auto const hidden = [&](int mask) {
    for (SoTreeViewItem* row = tree.root(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
      bool const wanted = !(VntNodeInfo::category(row->getNode()) & mask);
      EXPECT_EQ(row->isHidden(), wanted) << mask << ' ' << qPrintable(row->text(0));
      EXPECT_EQ(static_cast<QTreeWidgetItem*>(row)->isHidden(), wanted)
          << mask << ' ' << qPrintable(row->text(0));
    }
  };
  for (int mask : {16383, 0, 16383 - Vnt::Shape, Vnt::Separator | Vnt::Light, 16383}) {
    tree.view.setFilter(mask);
    hidden(mask);
  }
  // The same mask again does nothing; rows that come later obey it too.
  tree.view.setFilter(16383 - Vnt::Shape);
  static_cast<QTreeWidgetItem*>(tree.root())->setHidden(true);
  tree.view.setFilter(16383 - Vnt::Shape);
  EXPECT_TRUE(static_cast<QTreeWidgetItem*>(tree.root())->isHidden());
  static_cast<SoGroup*>(tree.root()->getNode())->addChild(new SoCube);
  EXPECT_TRUE(tree.view.lastItem()->isHidden());
}

TEST_F(TreeTest, FilterOfALargeTreeHidesWhatIsOpened) {
  SoRef<SoSeparator> const scene(new SoSeparator);
  for (int i = 0; i < 300; ++i) {
    auto* group = new SoGroup;
    for (int k = 0; k < 80; ++k) group->addChild(k % 2 ? static_cast<SoNode*>(new SoCube) : new SoSeparator);
    scene->addChild(group);
  }
  WatchedTree tree(scene);
  auto const shown = [&](SoTreeViewItem* group) {
    int count = 0;
    for (int i = 0; i < group->childCount(); ++i) {
      EXPECT_EQ(group->rawChild(i)->isHidden(),
                !(VntNodeInfo::category(group->rawChild(i)->getNode()) & tree.view.getFilter()));
      count += !tree.view.isRowHidden(
          i, tree.view.model()->index(group->row(), 0, tree.view.model()->index(0, 0)));
    }
    return count;
  };
  SoTreeViewItem* const open = tree.root()->child(7);
  open->setExpanded(true);
  tree.view.setFilter(16383 - Vnt::Shape);
  EXPECT_EQ(shown(open), 40);
  SoTreeViewItem* const later = tree.root()->child(9);
  later->setExpanded(true);
  EXPECT_EQ(shown(later), 40);
  later->setExpanded(false);
  tree.view.setFilter(16383);
  EXPECT_EQ(shown(open), 80);
  later->setExpanded(true);
  EXPECT_EQ(shown(later), 80);
}

TEST_F(TreeTest, Bookmarks) {
  start(read(sceneText));
  SoTreeViewItem* const root = tree()->firstChild();
  EXPECT_EQ(tree()->nextBookmark(), nullptr);
  EXPECT_EQ(tree()->previousBookmark(), nullptr);

  SoTreeViewItem* const lamp = root->child(0);
  click(tree(), lamp, 3);
  EXPECT_FALSE(lamp->isBookmarked());
  click(tree(), lamp, 4);
  EXPECT_TRUE(lamp->isBookmarked());
  EXPECT_FALSE(lamp->icon(4).isNull());
  EXPECT_EQ(tree()->nextBookmark(), lamp) << "around the end, back to itself";
  EXPECT_EQ(tree()->previousBookmark(), lamp);

  SoTreeViewItem* const last = tree()->lastItem();
  last->setBookmarked(true);
  commands()->nextBookmark();
  EXPECT_EQ(tree()->currentItem(), last);
  commands()->nextBookmark();
  EXPECT_EQ(tree()->currentItem(), lamp);
  commands()->previousBookmark();
  EXPECT_EQ(tree()->currentItem(), last);
  tree()->setCurrentItem(nullptr);
  EXPECT_EQ(tree()->nextBookmark(), lamp);
  EXPECT_EQ(tree()->previousBookmark(), last);
  commands()->clearBookmark();
  EXPECT_EQ(tree()->nextBookmark(), nullptr);
}

TEST_F(TreeTest, Search) {
  WatchedTree tree(read(sceneText));
  SoVantleTreeView& view = tree.view;
  SoTreeViewItem* const root = tree.root();
  SoTreeViewItem* const left = root->child(1);
  SoTreeViewItem* const ball = root->child(2)->child(1);
  view.setCurrentItem(nullptr);
  struct {
    int mode;
    QString text;
    int flags;
    SoTreeViewItem* from;
    SoTreeViewItem* found;
  } const cases[] = {
      {0, "separator", 0, nullptr, root},
      {0, "separator", 0, root, left},
      {0, "separator", 0, left, root},
      {0, "separator", 1, root, left},
      {0, "separator", 2, root, nullptr},
      {0, "Separator", 2 | 4, left, root},
      {0, "Separ", 4, root, nullptr},
      {1, "ba", 0, root, ball},
      {1, "Ball", 2 | 4, ball, ball},
      {1, "", 0, root, nullptr},
      {1, "", 4, root, left->child(1)},
      {0, "nothing", 1, root, nullptr},
      {2, "0x" + QString::number(reinterpret_cast<quintptr>(ball->getNode()), 16), 4, root, ball},
      {3, QString::number(ball->getNode()->getNodeId()), 4, root, ball},
  };
  for (auto const& c : cases) {
    view.setCurrentItem(c.from);
    EXPECT_EQ(view.find(c.mode, c.text, c.flags), c.found)
        << c.mode << ' ' << qPrintable(c.text) << ' ' << c.flags;
  }
  SoVantleTreeView empty;
  EXPECT_EQ(empty.find(0, "Cube", 0), nullptr);
}

TEST_F(TreeTest, PathsBothWays) {
  WatchedTree tree(read(sceneText));
  for (SoTreeViewItem* row = tree.root(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
    SoRef<SoPath> const path(tree.view.getPathFromItem(row));
    path->unrefNoDelete();
    SoTreeViewItem* const found = tree.view.getItemFromPath(path, 0);
    EXPECT_EQ(found, row->fromSubTreeField() ? row->parent() : row) << qPrintable(row->text(0));
  }
  EXPECT_EQ(tree.view.getPathFromItem(nullptr), nullptr);

  // The last part has no row.
  auto* lone = new SoCube;
  SoRef<SoPath> const path(new SoPath(tree.selection));
  path->append(0);
  path->append(1);
  path->appendNode(lone, 5);
  EXPECT_EQ(tree.view.getItemFromPath(path, 0), nullptr);
  SoNode* missing = nullptr;
  int index = -1;
  EXPECT_EQ(tree.view.getFirstExistingItemFromPath(path, missing, index), tree.root()->child(1));
  EXPECT_EQ(missing, lone);
  EXPECT_EQ(index, 5);
  // Without the selection node in front.
  SoRef<SoPath> const tail(path->copy(1, 2));
  EXPECT_EQ(tree.view.getItemFromPath(tail, 1), tree.root()->child(1));
  EXPECT_EQ(tree.view.getItemFromPath(tail, 2), nullptr);
}

TEST_F(TreeTest, References) {
  start(read(sceneText));
  SoTreeViewItem* const first = tree()->firstChild()->child(1)->child(0);
  SoTreeViewItem* const second = tree()->firstChild()->child(2)->child(0);
  ASSERT_EQ(first->getNode(), second->getNode());
  SoTreeViewItem* const lamp = tree()->firstChild()->child(0);
  tree()->showAllReferences(lamp->parent()->child(3)->child(0));
  tree()->setCurrentItem(first);
  tree()->nextReference();
  EXPECT_EQ(tree()->currentItem(), first) << "nothing to walk through yet";
  tree()->showAllReferences(first);
  EXPECT_TRUE(first->showRefImage() && second->showRefImage());
  tree()->nextReference();
  EXPECT_EQ(tree()->currentItem(), second);
  tree()->nextReference();
  EXPECT_EQ(tree()->currentItem(), first);
  tree()->previousReference();
  EXPECT_EQ(tree()->currentItem(), second);
  second->setIsInSceneGraph(false);
  tree()->setCurrentItem(first);
  tree()->nextReference();
  EXPECT_EQ(tree()->currentItem(), first) << "what is not in the scene is passed over";
  // A row that goes is forgotten.
  static_cast<SoGroup*>(tree()->firstChild()->getNode())->removeChild(1);
  EXPECT_EQ(tree()->getReferencedNodeManager()->getAllReferencedItems(second)->size(), 1);
  tree()->removeAllReferences(second);
  EXPECT_FALSE(second->showRefImage());
}

TEST_F(TreeTest, Keys) {
  start(read(sceneText));
  tree()->setFocus();
  QTest::keyClick(tree(), Qt::Key_Asterisk);
  EXPECT_TRUE(tree()->firstChild()->child(2)->isExpanded());
  EXPECT_TRUE(tree()->firstChild()->child(3)->isExpanded());
  QTest::keyClick(tree(), Qt::Key_Down);
  EXPECT_EQ(tree()->currentItem(), tree()->firstChild()->child(0));
  EXPECT_EQ(edition()->getTabNodeOverview()->getCurrentNode(), tree()->currentItem()->getNode());
  EXPECT_EQ(SoVantleTreeView::referencePageName("Cube"), "_so_cube");
  EXPECT_EQ(SoVantleTreeView::referencePageName("IndexedFaceSet"), "_so_indexed_face_set");
  EXPECT_EQ(SoVantleTreeView::referencePageName("PoMesh"), "_po_mesh");
  EXPECT_EQ(SoVantleTreeView::referencePageName("MoThing"), "_mo_thing");
}

TEST_F(TreeTest, AGraphOf30000Levels) {
  auto* const group = new SoSeparator;
  SoRef<SoSeparator> scene(group);
  for (int i = 0; i < 30000; ++i) {
    auto* above = new SoSeparator;
    above->addChild(scene);
    scene = SoRef<SoSeparator>(above);
  }
  WatchedTree tree(scene);
  tree.view.show();
  EXPECT_EQ(tree.view.getReferencedNodeManager()->rowCount(), 30001);
  tree.view.expandAll(tree.root());
  group->addChild(new SoCube);
  SoTreeViewItem* const last = tree.view.lastItem();
  EXPECT_EQ(last->text(0), "Cube");
  tree.view.showItem(last);
  QCoreApplication::processEvents();
  SoRef<SoPath> const path(tree.view.getPathFromItem(last));
  path->unrefNoDelete();
  EXPECT_EQ(tree.view.getItemFromPath(path, 0), last);
  tree.selection->removeAllChildren();
  EXPECT_EQ(tree.root(), nullptr);
}

} // namespace
