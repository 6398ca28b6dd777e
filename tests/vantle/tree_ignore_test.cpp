// Nodes that are set to ignored: out of the graph, with a grey row that stays.

#include <QColor>
#include <QFile>
#include <QStatusBar>

#include "kestrava/kits/SoWrapperKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

using IgnoreTest = VantleTest;

SoGroup* group(SoTreeViewItem* row) { return static_cast<SoGroup*>(row->getNode()); }

TEST_F(IgnoreTest, ANodeLeavesTheGraphAndItsRowStays) {
  WatchedTree tree(
      read("Separator { Cube { } DEF branch Separator { Sphere { } Group { Cone { } } } Cylinder { } }"));
  SoTreeViewItem* const branch = tree.root()->child(1);
  SoRef<SoNode> const node(branch->getNode());
  int const references = node->getRefCount();
  tree.view.setCurrentItem(branch);
  ASSERT_TRUE(tree.view.changeSceneItemState(false, branch));
  EXPECT_EQ(group(tree.root())->getNumChildren(), 2);
  EXPECT_EQ(node->getRefCount(), references) << "held by the tree in place of the group";
  ASSERT_EQ(tree.root()->childCount(), 3);
  EXPECT_TRUE(branch->isIgnored() && !branch->isInSceneGraph());
  EXPECT_EQ(branch->getSceneIndex(), -1);
  EXPECT_EQ(branch->data(0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::darkGray));
  EXPECT_EQ(tree.view.currentItem(), branch);
  // The row itself can be chosen, to enable it again; what is below it not.
  EXPECT_TRUE(branch->flags() & Qt::ItemIsEnabled);
  EXPECT_FALSE(branch->rawChild(1)->rawChild(0)->flags() & Qt::ItemIsEnabled);
  EXPECT_FALSE(tree.view.changeSceneItemState(false, branch->rawChild(0)));
  EXPECT_EQ(tree.root()->childCount(false), 2);

  // The branch changes, and what it holds dies.
  static_cast<SoGroup*>(node.get())->removeChild(1);
  static_cast<SoGroup*>(node.get())->addChild(new SoCube);
  EXPECT_EQ(branch->rawChild(1)->text(0), "Cube");
  EXPECT_FALSE(branch->rawChild(1)->flags() & Qt::ItemIsEnabled);

  ASSERT_TRUE(tree.view.changeSceneItemState(true, branch));
  EXPECT_EQ(group(tree.root())->getChild(1), node.get());
  EXPECT_EQ(node->getRefCount(), references);
  EXPECT_FALSE(branch->isIgnored());
  EXPECT_TRUE(branch->rawChild(1)->flags() & Qt::ItemIsEnabled);
  EXPECT_EQ(rowLines(tree.view, false), R"(0 Separator
  0 Cube
  1 Separator 'branch'
    0 Sphere
    1 Cube
  2 Cylinder
)");
}

TEST_F(IgnoreTest, ItsPlaceIsFoundAgain) {
  WatchedTree tree(read("Separator { DEF a Cube { } DEF b Cube { } DEF c Cube { } DEF d Cube { } }"));
  SoTreeViewItem* const c = tree.root()->child(2);
  SoGroup* const scene = group(tree.root());
  ASSERT_TRUE(tree.view.changeSceneItemState(false, c));
  scene->insertChild(new SoSphere, 0);
  scene->removeChild(1); // a
  scene->addChild(new SoSphere);
  SoRef<SoNode> const b(SoNode::getByName("b"));
  scene->removeChild(b);
  scene->addChild(b);
  ASSERT_TRUE(tree.view.changeSceneItemState(true, c));
  EXPECT_EQ(rowLines(tree.view, false), R"(0 Separator
  0 Sphere
  1 Cube 'c'
  2 Cube 'd'
  3 Sphere
  4 Cube 'b'
)");
  ASSERT_TRUE(tree.view.changeSceneItemState(false, c));
  scene->removeAllChildren();
  ASSERT_EQ(tree.root()->childCount(), 1) << "an ignored row stays";
  ASSERT_TRUE(tree.view.changeSceneItemState(true, c));
  EXPECT_EQ(scene->getNumChildren(), 1);
}

TEST_F(IgnoreTest, EqualNeighbours) {
  WatchedTree tree(read("Separator { DEF x Cube { } USE x Sphere { } USE x USE x }"));
  SoGroup* const scene = group(tree.root());
  ASSERT_TRUE(tree.view.changeSceneItemState(false, tree.root()->rawChild(1)));
  ASSERT_TRUE(tree.view.changeSceneItemState(false, tree.root()->rawChild(3)));
  EXPECT_EQ(scene->getNumChildren(), 3);
  EXPECT_EQ(tree.root()->childCount(), 5);
  // Not the last one but this one comes back.
  ASSERT_TRUE(tree.view.changeSceneItemState(true, tree.root()->rawChild(1)));
  EXPECT_EQ(scene->getChild(2)->getTypeId(), SoSphere::getClassTypeId());
  EXPECT_TRUE(tree.root()->rawChild(3)->isIgnored());
  ASSERT_TRUE(tree.view.changeSceneItemState(true, tree.root()->rawChild(3)));
  EXPECT_EQ(rowLines(tree.view, false),
            "0 Separator\n  0 Cube 'x'\n  1 Cube 'x'\n  2 Sphere\n  3 Cube 'x'\n  4 Cube 'x'\n");
}

TEST_F(IgnoreTest, EveryPlaceOfTheParent) {
  WatchedTree tree(read("Separator { DEF shared Separator { Cube { } Sphere { } } Group { USE shared } }"));
  SoGroup* const shared = group(tree.root()->child(0));
  SoTreeViewItem* const second = tree.root()->child(1)->child(0);
  ASSERT_TRUE(tree.view.changeSceneItemState(false, tree.root()->child(0)->child(0)));
  ASSERT_EQ(second->childCount(), 2);
  EXPECT_TRUE(second->rawChild(0)->isIgnored());
  // A third place, and the places go and come back.
  group(tree.root())->addChild(shared);
  SoTreeViewItem* const third = tree.root()->child(2);
  ASSERT_EQ(third->childCount(), 2);
  EXPECT_TRUE(third->rawChild(0)->isIgnored());
  SoRef<SoNode> const kept(shared);
  while (group(tree.root())->getNumChildren() > 0) group(tree.root())->removeChild(0);
  group(tree.root())->addChild(shared);
  SoTreeViewItem* const back = tree.root()->child(0);
  ASSERT_EQ(back->childCount(), 2);
  EXPECT_TRUE(back->rawChild(0)->isIgnored());
  ASSERT_TRUE(tree.view.changeSceneItemState(true, back->rawChild(0)));
  EXPECT_EQ(shared->getNumChildren(), 2);
  EXPECT_EQ(shared->getChild(0)->getTypeId(), SoCube::getClassTypeId());
}

TEST_F(IgnoreTest, NodesInFields) {
  WatchedTree tree(read("Separator { IndexedFaceSet { vertexProperty DEF points VertexProperty { } } }"));
  SoTreeViewItem* const shape = tree.root()->child(0);
  auto* const face = static_cast<SoIndexedFaceSet*>(shape->getNode());
  SoTreeViewItem* const points = shape->child(0);
  ASSERT_TRUE(tree.view.changeSceneItemState(false, points));
  EXPECT_EQ(face->vertexProperty.getValue(), nullptr);
  ASSERT_EQ(shape->childCount(), 1);
  // Another node has taken the place: it is not thrown out.
  face->vertexProperty.setValue(new SoVertexProperty);
  EXPECT_EQ(shape->childCount(), 2);
  EXPECT_FALSE(tree.view.changeSceneItemState(true, points));
  face->vertexProperty.setValue(nullptr);
  EXPECT_TRUE(tree.view.changeSceneItemState(true, points));
  EXPECT_EQ(face->vertexProperty.getValue(), points->getNode());
  EXPECT_EQ(shape->childCount(), 1);
}

TEST_F(IgnoreTest, WhatSomebodyElseBringsBackIsThereOnce) {
  WatchedTree tree(read("Separator { Cube { } Sphere { } Cone { } }"));
  SoTreeViewItem* const row = tree.root()->child(1);
  SoRef<SoNode> const node(row->getNode());
  SoGroup* const scene = group(tree.root());
  ASSERT_TRUE(tree.view.changeSceneItemState(false, row));
  scene->addChild(node);
  EXPECT_EQ(tree.root()->childCount(), 3) << "no second row while the first is ignored";
  ASSERT_TRUE(tree.view.changeSceneItemState(true, row));
  EXPECT_EQ(scene->getNumChildren(), 3);
  EXPECT_EQ(rowLines(tree.view, false), "0 Separator\n  0 Cube\n  1 Cone\n  2 Sphere\n");
}

TEST_F(IgnoreTest, WhatCanNotBeIgnored) {
  start(read("Separator { DEF kit WrapperKit { } File { } }"));
  auto const refused = [this](SoTreeViewItem* row) {
    frame()->statusBar()->clearMessage();
    tree()->itemStateChanged(false, row);
    return !row->isIgnored() && frame()->statusBar()->currentMessage().contains("can not be ignored");
  };
  EXPECT_TRUE(refused(tree()->firstChild()));
  EXPECT_TRUE(refused(tree()->firstChild()->child(1))) << "a file";
  SoTreeViewItem* const kit = tree()->firstChild()->child(0);
  static_cast<SoWrapperKit*>(kit->getNode())->setPart("contents", new SoSeparator);
  ASSERT_GT(kit->childCount(), 0);
  EXPECT_TRUE(refused(kit->child(0))) << "a part";
  tree()->setCurrentItem(kit);
  commands()->ignoreEnable();
  EXPECT_TRUE(kit->isIgnored());
  commands()->ignoreEnable();
  EXPECT_FALSE(kit->isIgnored());
}

TEST_F(IgnoreTest, SavingSaysWhatIsMissing) {
  QString const name =
      writeFile("scene.kv", "#Kestrava V1.0 ascii\nSeparator { DEF left Cube { } DEF right Cube { } }");
  start();
  viewer()->fileLoad(name);
  ASSERT_EQ(tree()->firstChild()->text(0), "Separator");
  tree()->itemStateChanged(false, tree()->firstChild()->child(1));
  BoxAnswer box("Vantle -- Ignored Nodes",
                name + " was written without what is set to ignored:\nCube \"right\"", {"OK"}, "OK");
  viewer()->fileSave();
  EXPECT_TRUE(box.wasShown());
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QByteArray const text = file.readAll();
  EXPECT_TRUE(text.contains("left") && !text.contains("right"));
  EXPECT_TRUE(tree()->firstChild()->rawChild(1)->isIgnored()) << "still there, still ignored";
}

TEST_F(IgnoreTest, TheHostGetsItsNodesBack) {
  SoRef<SoNode> const scene(read("Separator { Cube { } Separator { Sphere { } Cone { } } }"));
  startAttached(scene);
  SoTreeViewItem* const below = tree()->firstChild()->child(1);
  tree()->itemStateChanged(false, below->child(0));
  tree()->itemStateChanged(false, below);
  tree()->itemStateChanged(false, tree()->firstChild()->child(0));
  EXPECT_EQ(static_cast<SoGroup*>(scene.get())->getNumChildren(), 0);
  SoVantleImpl::stop(true);
  WatchedTree after(scene);
  EXPECT_EQ(rowLines(after.view, false), "0 Separator\n  0 Cube\n  1 Separator\n    0 Sphere\n    1 Cone\n");
}

} // namespace
