// Rows of the scene tree: which there are, and what they say.

#include <QApplication>
#include <QTest>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/SessionChild.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoSortedItemList.h"

namespace {

using RowsTest = VantleTest;

TEST_F(RowsTest, GroupsSharedNodesAndNodesInFields) {
  WatchedTree tree(read(R"(Separator {
    DEF shape IndexedFaceSet { vertexProperty DEF points VertexProperty { } }
    Switch { USE shape Group { } }
    Group { USE points }
  })"));
  EXPECT_EQ(rowLines(tree.view, false),
            R"(0 Separator
  0 IndexedFaceSet 'shape'
    0 VertexProperty 'points' in vertexProperty
  1 Switch
    0 IndexedFaceSet 'shape'
      0 VertexProperty 'points' in vertexProperty
    1 Group
  2 Group
    0 VertexProperty 'points'
)");
  SoTreeViewItem* const shape = tree.root()->child(0);
  SoTreeViewItem* const held = shape->child(0);
  EXPECT_TRUE(held->fromField() && held->fromSubTreeField() && !held->fromBaseKit());
  EXPECT_EQ(held->getFieldParent(), &static_cast<SoIndexedFaceSet*>(shape->getNode())->vertexProperty);
  SoTreeViewItem* const child = tree.root()->child(2)->child(0);
  EXPECT_FALSE(child->fromField() || child->fromSubTreeField());
  EXPECT_EQ(child->getNode(), held->getNode());

  // Columns.
  EXPECT_EQ(shape->text(2), "2");
  EXPECT_EQ(shape->data(0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
  EXPECT_EQ(shape->data(1, Qt::ForegroundRole).value<QColor>(), QColor(0, 128, 0));
  EXPECT_EQ(shape->data(2, Qt::ForegroundRole).value<QColor>(), QColor(Qt::blue));
  EXPECT_FALSE(shape->icon(0).isNull());
  EXPECT_TRUE(shape->icon(3).isNull() && shape->icon(4).isNull());
  EXPECT_EQ(held->font(0).family(), tree.view.fieldNodeFont().family());
  EXPECT_EQ(shape->font(0), tree.view.normalFont());

  // The arrow needs a second reference, whoever asks.
  tree.root()->child(2)->setShowRefImage(true);
  EXPECT_FALSE(tree.root()->child(2)->showRefImage());
  shape->setShowRefImage(true);
  EXPECT_TRUE(shape->showRefImage() && !shape->icon(3).isNull());

  EXPECT_EQ(tree.root()->getParentNode(), nullptr);
  EXPECT_EQ(tree.root()->previousSibling(), nullptr);
  EXPECT_EQ(tree.root()->nextSibling(), nullptr);
  EXPECT_EQ(held->getParentNode(), shape->getNode());
  EXPECT_EQ(tree.root()->child(1)->previousSibling(), shape);
  EXPECT_EQ(shape->nextSibling(), tree.root()->child(1));
}

TEST_F(RowsTest, PartsOfKits) {
  SoRef<SoSeparatorKit> const kit(new SoSeparatorKit);
  ASSERT_TRUE(kit->getPart("transform", true));
  SoRef<SoShapeKit> const inner(new SoShapeKit);
  ASSERT_TRUE(kit->setPart("childList[0]", new SoSeparatorKit));
  ASSERT_TRUE(kit->setPart("childList[1]", inner));
  WatchedTree tree(kit);
  EXPECT_EQ(rowLines(tree.view, false).substr(0, 220), std::string(R"(0 SeparatorKit
  0 Separator 'topSeparator' in topSeparator
    0 Transform 'transform'
    1 NodeKitListPart 'childList'
      0 Group in containerNode
        0 SeparatorKit 'childList[0]'
        1 ShapeKit 'childList[1]'
)")
                                                           .substr(0, 220));
  SoTreeViewItem* const top = tree.root()->child(0);
  EXPECT_TRUE(top->baseKitPart() && !top->isPartPublic());
  EXPECT_EQ(top->getBaseKit(), kit.get());
  EXPECT_EQ(top->partNumber(), kit->getNodekitCatalog().getPartNumber("topSeparator"));
  SoTreeViewItem* const transform = top->child(0);
  EXPECT_TRUE(transform->baseKitPart() && transform->isPartPublic());
  EXPECT_EQ(transform->getParentPartName(), SbName("topSeparator"));
  SoTreeViewItem* const container = top->child(1)->child(0);
  EXPECT_TRUE(container->fromBaseKit() && !container->baseKitPart());
  EXPECT_EQ(container->partNumber(), -1);
  EXPECT_TRUE(container->partName().empty());
  // Of two ways to the name: from the place, as here, and from the kit.
  for (SoTreeViewItem* row = top; row; row = SoVantleTreeView::itemBelowInTree(row)) {
    if (row->getBaseKit() != kit) continue;
    EXPECT_EQ(row->partName().str(), kit->getPartString(row->getNode()).str());
  }
  // Parts are drawn like ordinary rows, the other values of a kit's fields are not.
  EXPECT_EQ(transform->font(0), tree.view.normalFont());
  EXPECT_EQ(container->font(0).family(), tree.view.fieldNodeFont().family());

  // Parts that are exchanged, far below the kit too.
  SoRef<SoNode> const replaced(transform->getNode());
  ASSERT_TRUE(kit->setPart("transform", nullptr));
  ASSERT_TRUE(inner->getPart("appearance", true));
  ASSERT_TRUE(kit->setPart("childList[0]", nullptr));
  SoVantleTreeView fresh;
  fresh.initTree(kit);
  EXPECT_EQ(rowLines(tree.view), rowLines(fresh));
}

TEST_F(RowsTest, FilesAndInlines) {
  QString const path = writeFile("part.kv", "#Kestrava V1.0 ascii\nSeparator { Cube { } Sphere { } }\n");
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* file = new SoFile;
  auto* external = new SoWWWInline;
  root->addChild(file);
  root->addChild(external);
  WatchedTree tree(root);
  EXPECT_EQ(rowLines(tree.view, false), "0 Separator\n  0 File\n  1 WWWInline\n");

  file->name.setValue(toSbString(path));
  external->setChildData(new SoCube);
  // The first child of an inline is its own affair; its others count from 0.
  EXPECT_EQ(rowLines(tree.view, false), R"(0 Separator
  0 File
    0 Separator
      0 Cube
      1 Sphere
  1 WWWInline
    0 Cube
)");
  SoTreeViewItem* const cube = tree.view.lastItem();
  SoRef<SoPath> path1(tree.view.getPathFromItem(cube));
  path1->unrefNoDelete();
  EXPECT_EQ(path1->getTail(), cube->getNode());
  EXPECT_EQ(tree.view.getItemFromPath(path1, 0), cube);

  SoVantleTreeView fresh;
  fresh.initTree(root);
  EXPECT_EQ(rowLines(tree.view), rowLines(fresh));
  external->setChildData(nullptr);
  EXPECT_TRUE(QString::fromStdString(rowLines(tree.view, false)).endsWith("  1 WWWInline\n"));
}

TEST_F(RowsTest, IgnoredRowsTakeUpANumber) {
  WatchedTree tree(read("Separator { Cube { } Sphere { } Cone { } }"));
  SoTreeViewItem* const root = tree.root();
  SoTreeViewItem* const sphere = root->child(1);
  sphere->setIgnoreFlag(true);
  root->generateSceneIndex();
  EXPECT_EQ(sphere->getSceneIndex(), -1);
  EXPECT_EQ(root->child(1)->text(0), "Cone") << "what is not in the scene is not counted";
  EXPECT_EQ(root->child(1)->getSceneIndex(), 2);
  EXPECT_EQ(root->childCount(false), 2);
  EXPECT_EQ(root->childCount(true), 3);
  EXPECT_EQ(sphere->data(0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::darkGray));
  bool ignored = false;
  EXPECT_TRUE(root->childExist(root->child(1)->getNode(), nullptr, ignored, 1));
  EXPECT_FALSE(ignored);
  for (SoTreeViewItem* row : {root->rawChild(0), root->rawChild(2)}) row->setIgnoreFlag(true);
  EXPECT_EQ(root->childCount(false), 0);
  EXPECT_EQ(root->childCount(true), 3);
  EXPECT_TRUE(root->childExist(root->rawChild(0)->getNode(), nullptr, ignored, -1));
  EXPECT_TRUE(ignored);
}

TEST_F(RowsTest, Order) {
  WatchedTree tree(read("Separator { Group { Cube { } } Group { Cone { } Sphere { } } }"));
  SoTreeViewItem* const first = tree.root()->child(0);
  SoTreeViewItem* const second = tree.root()->child(1);
  EXPECT_TRUE(*first < *second);
  EXPECT_TRUE(*first->child(0) < *second->child(1));
  EXPECT_EQ(second->child(1)->compareTo(*second->child(0)), 1);
  // Rows of different depths have no order as places, but one from above to below.
  EXPECT_FALSE(*first < *second->child(0) || *second->child(0) < *first);
  EXPECT_EQ(first->compareTo(*second->child(0)), 0);
  SoSortedItemList list;
  for (SoTreeViewItem* row : {second->child(1), first, second, second->child(1), tree.root()})
    list.addRef(row);
  QList<SoTreeViewItem*> rows;
  list.toList(rows);
  EXPECT_EQ(rows, QList<SoTreeViewItem*>({tree.root(), first, second, second->child(1)}));
  list.removeRef(second);
  EXPECT_EQ(list.count(), 3);
  EXPECT_TRUE(second->isParent(second->child(1)) && !second->isParent(first->child(0)));
}

TEST_F(RowsTest, TheIndexFindsEveryRowOfANode) {
  WatchedTree tree(read(R"(Separator { DEF c Cube { } Group { USE c } Group { USE c USE c }
    IndexedFaceSet { vertexProperty DEF v VertexProperty { } } IndexedFaceSet { vertexProperty USE v } })"));
  SoReferencedNodeManager const& references = *tree.view.getReferencedNodeManager();
  SoNode* const cube = tree.root()->child(0)->getNode();
  QList<SoTreeViewItem*> rows;
  references.getAllItems(cube, rows);
  SoTreeViewItem* const last = tree.root()->child(2);
  EXPECT_EQ(rows, QList<SoTreeViewItem*>({tree.root()->child(0), tree.root()->child(1)->child(0),
                                          last->child(0), last->child(1)}));
  QList<QList<SoTreeViewItem*>*> families;
  references.searchItemFamilies(cube, families);
  EXPECT_EQ(families.size(), 4);
  qDeleteAll(families);
  QString const key = SoReferencedNodeManager::familyKey(last->child(1));
  EXPECT_EQ(key, QString::number(reinterpret_cast<quintptr>(last->getNode())) + "+1");

  QList<SoTreeViewItem*> searched;
  tree.view.getReferencedNodeManager()->searchAllReferencedItems(cube, searched);
  EXPECT_EQ(searched, rows);

  // Only values of fields are in the node map, and no parts of kits.
  EXPECT_EQ(references.nodeMapCount(cube), 0);
  EXPECT_EQ(references.nodeMapCount(tree.view.lastItem()->getNode()), 2);

  static_cast<SoGroup*>(tree.root()->getNode())->removeChild(2);
  rows.clear();
  references.getAllItems(cube, rows);
  EXPECT_EQ(rows.size(), 2);
}

TEST_F(RowsTest, RowsMadeByHand) {
  SoVantleTreeView view;
  SoReferencedNodeManager const& references = *view.getReferencedNodeManager();
  SoRef<SoSeparator> const group(new SoSeparator);
  SoRef<SoIndexedFaceSet> const shape(new SoIndexedFaceSet);
  SoRef<SoCube> const cube(new SoCube);
  auto* const top = new SoTreeViewItem(&view, group, nullptr, nullptr);
  auto* const second = new SoTreeViewItem(&view, top, cube, nullptr, nullptr);
  auto* const a = new SoTreeViewItem(top, cube, nullptr, nullptr);
  auto* const c = new SoTreeViewItem(top, shape, nullptr, nullptr);
  auto* const b = new SoTreeViewItem(top, a, cube, nullptr, nullptr);
  auto* const held = new SoTreeViewItem(c, cube, &shape->vertexProperty, nullptr);
  auto* const below = new SoTreeViewItem(held, cube, nullptr, nullptr);
  EXPECT_EQ(view.firstChild(), top);
  EXPECT_EQ(second->previousSibling(), top);
  EXPECT_EQ(b->nextSibling(), c);
  EXPECT_EQ(references.rowCount(), 7);
  EXPECT_EQ(references.rowsOf(cube).size(), 5u);
  EXPECT_TRUE(below->fromSubTreeField() && !below->fromField());
  for (SoTreeViewItem* row : {a, b, c})
    EXPECT_EQ(row->data(0, Qt::UserRole).toInt(), row->row()) << "numbered as they come";

  // Taken out and appended again.
  top->takeItem(a);
  EXPECT_EQ(a->listView(), nullptr);
  EXPECT_EQ(references.rowsOf(cube).size(), 4u);
  EXPECT_EQ(c->getSceneIndex(), 1);
  top->insertItem(a);
  EXPECT_EQ(top->rawChild(2), a);
  EXPECT_EQ(a->getSceneIndex(), 2);
  EXPECT_EQ(references.rowsOf(cube).size(), 5u);
  top->takeItem(1); // with all that is below it
  EXPECT_EQ(references.rowCount(), 4);
  top->insertItem(c);
  EXPECT_EQ(references.rowCount(), 7);
  view.takeItem(1);
  EXPECT_EQ(view.topLevelItemCount(), 1);
  view.insertItem(second);
  EXPECT_EQ(references.rowCount(), 7);

  a->setBookmarked(true);
  a->setIgnoreFlag(true);
  a->setRowSelectable(false);
  a->init(nullptr);
  EXPECT_FALSE(a->isIgnored() || a->isBookmarked() || !a->isRowSelectable() || !a->isInSceneGraph());
  EXPECT_EQ(references.rowCount(), 7) << "registered once";
  a->setData(0, Qt::UserRole, 5);
  EXPECT_EQ(a->getSceneIndex(), 5);
  top->generateSceneIndex();
  EXPECT_EQ(a->getSceneIndex(), 1);

  c->insertItem(new SoTreeViewItem(c, cube, nullptr, nullptr));
  c->deleteAllBranches(true);
  EXPECT_EQ(c->childCount(), 1);
  EXPECT_EQ(c->child(0), held);
  top->deleteAllBranches(false);
  EXPECT_EQ(references.rowCount(), 2);
}

TEST_F(RowsTest, KindsOfParts) {
  using KitItem = SoTreeViewItemPrivate::SoBaseKitItemPrivate;
  SoRef<SoShapeKit> const kit(new SoShapeKit);
  SoRef<SoNode> const transform(kit->getPart("transform", true)), other(new SoCube);
  KitItem const top(kit, kit->topSeparator.getValue()), part(kit, transform), none(kit, other);
  EXPECT_EQ(top.partType, 2);
  EXPECT_EQ(part.partType, 1);
  EXPECT_EQ(part.partNumber, kit->getNodekitCatalog().getPartNumber("transform"));
  EXPECT_FALSE(none.isPart);
  EXPECT_EQ(none.partType, 0);
  EXPECT_EQ(none.partNumber, -1);
  EXPECT_TRUE(none.partName.empty());
}

/// A tree in a process of its own, which reads the keys of its environment when it starts.
template <typename Look> int lookAtTree(Look look) {
  int count = 1;
  char name[] = "vantle";
  char* arguments[] = {name, nullptr};
  QApplication application(count, arguments);
  return look();
}

std::string linesOfAll() {
  SoRef<SoSeparator> const scene(new SoSeparator);
  auto* const kit = new SoSeparatorKit;
  kit->getPart("transform", true);
  auto* const external = new SoWWWInline;
  external->alternateRep.setValue(new SoCube);
  external->setChildData(new SoSeparator);
  auto* const shape = new SoIndexedFaceSet;
  shape->vertexProperty.setValue(new SoVertexProperty);
  for (SoNode* node : std::initializer_list<SoNode*>{kit, external, shape}) scene->addChild(node);
  WatchedTree tree(scene);
  std::string const lines = rowLines(tree.view, false);
  std::fputs(lines.c_str(), stderr);
  return lines;
}

SessionChild const internalChildren("internal children", [] {
  return lookAtTree([] {
    CHILD_EXPECT(linesOfAll() == R"(0 Separator
  0 SeparatorKit
    0 Separator 'topSeparator'
      0 Transform 'transform'
  1 WWWInline
    0 Separator
      0 Cube
    1 Separator
  2 IndexedFaceSet
)");
    // A change of what is shown only there.
    SoRef<SoSeparator> const scene(new SoSeparator);
    auto* const external = new SoWWWInline;
    auto* const kit = new SoSeparatorKit;
    scene->addChild(external);
    scene->addChild(kit);
    WatchedTree tree(scene);
    external->alternateRep.setValue(new SoCube);
    external->setChildData(new SoCube);
    kit->setPart("childList[0]", new SoSeparatorKit);
    kit->getPart("transform", true);
    SoVantleTreeView fresh;
    fresh.initTree(scene);
    if (rowLines(tree.view) != rowLines(fresh)) std::fputs((rowLines(tree.view) + "fresh:\n" + rowLines(fresh)).c_str(), stderr);
    CHILD_EXPECT(rowLines(tree.view) == rowLines(fresh));
    return 0;
  });
});

SessionChild const launchedByHost("launched by a host", [] {
  return lookAtTree([] {
    CHILD_EXPECT(linesOfAll() == R"(0 Separator
  0 SeparatorKit
    0 Separator 'topSeparator'
      0 Transform 'transform'
  1 WWWInline
    0 Separator
  2 IndexedFaceSet
)");
    return 0;
  });
});

SessionChild const withoutHighlight("without highlight", [] {
  return lookAtTree([] {
    WatchedTree tree(new SoSeparator);
    tree.view.setCurrentItem(nullptr);
    tree.view.setCurrentItem(tree.root());
    CHILD_EXPECT(tree.selection->getNumSelected() == 0);
    return 0;
  });
});

TEST(RowsUnderKeys, AreOthers) {
  struct {
    char const *key, *value;
    SessionChild const& child;
  } const cases[] = {{"VANTLE_SHOW_INTERNAL_CHILDREN", "1", internalChildren},
                     {"KSRU_LAUNCH_VANTLE", "1", launchedByHost},
                     {"PLX_LAUNCH_VANTLE", "1", launchedByHost},
                     {"KSV_VANTLE_AUTO_HIGHLIGHT", "0", withoutHighlight}};
  for (auto const& c : cases) {
    qputenv(c.key, c.value);
    EXPECT_EQ(c.child.run(), "") << c.key;
    qunsetenv(c.key);
  }
}

} // namespace
