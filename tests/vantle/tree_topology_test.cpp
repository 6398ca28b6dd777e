// Rows follow the live graph.

#include <QTest>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/kits/SoWrapperKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vnt/VntCommand.h"

namespace {

using TopologyTest = VantleTest;

std::string freshLines(SoNode* scene) {
  SoVantleTreeView fresh;
  fresh.initTree(scene);
  return rowLines(fresh);
}

TEST_F(TopologyTest, RowsThatStayKeepWhatTheyHave) {
  SoRef<SoSeparator> const scene(static_cast<SoSeparator*>(read(R"(Separator {
    DEF a Separator { Cube { } DEF deep Separator { Cube { } } }
    DEF b Separator { Sphere { } } })")));
  WatchedTree tree(scene);
  tree.view.resize(300, 200);
  tree.view.show();
  SoTreeViewItem* const a = tree.root()->child(0);
  SoTreeViewItem* const deep = a->child(1);
  tree.view.expandAll(tree.root());
  tree.view.setCurrentItem(deep->child(0));
  deep->setBookmarked(true);
  auto* group = static_cast<SoGroup*>(a->getNode());
  group->insertChild(new SoCube, 0);
  group->replaceChild(1, new SoCube);
  scene->insertChild(new SoCube, 0);
  scene->removeChild(0);
  static_cast<SoGroup*>(tree.root()->child(1)->getNode())->removeAllChildren();
  QCoreApplication::processEvents();
  EXPECT_EQ(tree.root()->child(0), a);
  EXPECT_EQ(a->child(2), deep);
  EXPECT_TRUE(deep->isExpanded() && deep->isBookmarked());
  EXPECT_EQ(tree.view.currentItem(), deep->child(0));
  EXPECT_TRUE(tree.view.currentItem()->isSelected());
  // The highlighted path leads to the same node from its new place.
  ASSERT_EQ(tree.selection->getNumSelected(), 1);
  EXPECT_EQ(tree.selection->getPath(0)->getTail(), tree.view.currentItem()->getNode());
}

TEST_F(TopologyTest, SharedGroupsAndSceneRoot) {
  SoRef<SoSeparator> const scene(
      static_cast<SoSeparator*>(read("Separator { DEF s Separator { } Group { USE s } Group { USE s } }")));
  WatchedTree tree(scene);
  SoReferencedNodeManager const& references = *tree.view.getReferencedNodeManager();
  int const before = references.rowCount();
  static_cast<SoGroup*>(scene->getChild(0))->addChild(new SoCube);
  EXPECT_EQ(references.rowCount(), before + 3) << "a row at each place";

  SoRef<SoSeparator> const other(new SoSeparator);
  other->addChild(new SoCube);
  tree.selection->replaceChild(0, other);
  EXPECT_EQ(rowLines(tree.view, false), "0 Separator\n  0 Cube\n");
  tree.selection->removeAllChildren();
  EXPECT_EQ(tree.root(), nullptr);
  EXPECT_EQ(references.rowCount(), 0);
  other->addChild(new SoCube);
  EXPECT_EQ(tree.root(), nullptr);

  // Neither null nor a sensor without a manager is a change.
  SoGraphTopologyManager::graphTopologyChangedCB(nullptr, nullptr);
  SoGraphTopologyManager::graphTopologyChangedCB(tree.view.getTopologyManager(), nullptr);
}

/// Changes the graph once more inside of the change.
void changeAgain(void* group, SoSensor* sensor) {
  static_cast<SoNodeSensor*>(sensor)->detach();
  static_cast<SoGroup*>(group)->insertChild(new SoCube, 0);
  static_cast<SoGroup*>(group)->removeChild(static_cast<SoGroup*>(group)->getNumChildren() - 1);
}

TEST_F(TopologyTest, ChangesInsideOfChanges) {
  SoRef<SoSeparator> const scene(
      static_cast<SoSeparator*>(read("Separator { Separator { Cone { } Cube { } } }")));
  auto* group = static_cast<SoGroup*>(scene->getChild(0));
  SoNodeSensor first(changeAgain, group); // hears of the change before the tree does
  first.setPriority(0);
  WatchedTree tree(scene);
  for (int round = 0; round < 3; ++round) {
    first.attach(group);
    if (round == 0) group->addChild(new SoSeparator);
    if (round == 1) group->removeChild(1);
    if (round == 2) group->replaceChild(0, new SoSeparator);
    EXPECT_EQ(rowLines(tree.view), freshLines(scene)) << round;
  }
}

TEST_F(TopologyTest, IgnoredRowsStayAndTakeTheirNodeBack) {
  SoRef<SoSeparator> const scene(
      static_cast<SoSeparator*>(read("Separator { Cone { } Cube { } Sphere { } }")));
  WatchedTree tree(scene);
  SoRef<SoNode> const cube(scene->getChild(1));
  SoTreeViewItem* const row = tree.root()->child(1);
  row->setIgnoreFlag(true);
  scene->removeChild(1);
  EXPECT_EQ(tree.root()->childCount(), 3) << "the row stays";
  scene->addChild(new SoSeparator);
  EXPECT_EQ(tree.root()->childCount(), 4);
  scene->insertChild(cube, 1);
  EXPECT_EQ(tree.root()->childCount(), 4) << "no second row for the same node";
  row->setIgnoreFlag(false);
  EXPECT_EQ(rowLines(tree.view), freshLines(scene));
}

TEST_F(TopologyTest, NodesInFieldsThroughTheEditCommandsOperations) {
  SoRef<SoSeparator> const scene(
      static_cast<SoSeparator*>(read("Separator { DEF f IndexedFaceSet { } Group { USE f } }")));
  WatchedTree tree(scene);
  auto* shape = static_cast<SoIndexedFaceSet*>(scene->getChild(0));
  SoRef<SoVertexProperty> const points(new SoVertexProperty);
  SoGraphTopologyManager& topology = *tree.view.getTopologyManager();
  shape->vertexProperty.setValue(points);
  topology.insertItemsFromField(points, shape, 0, &shape->vertexProperty);
  EXPECT_EQ(rowLines(tree.view), freshLines(scene)) << "no row is there twice";
  topology.removeItemsFromField(shape, points, 0);
  EXPECT_EQ(tree.root()->child(0)->childCount() + tree.root()->child(1)->child(0)->childCount(), 0);
  shape->vertexProperty.setValue(nullptr);
  EXPECT_EQ(rowLines(tree.view), freshLines(scene));
}

TEST_F(TopologyTest, ChangesMadeWithoutNotification) {
  SoRef<SoSeparator> const scene(static_cast<SoSeparator*>(read(R"(Separator {
    DEF a Separator { Cube { } DEF b Separator { Cone { } IndexedFaceSet { } } }
    Group { USE a } WrapperKit { contents Separator { Cube { } } } })")));
  WatchedTree tree(scene);
  auto* const a = static_cast<SoGroup*>(scene->getChild(0));
  auto* const b = static_cast<SoGroup*>(a->getChild(1));
  auto* const kit = static_cast<SoWrapperKit*>(scene->getChild(2));
  auto* const shape = static_cast<SoIndexedFaceSet*>(b->getChild(1));
  auto const silently = [&](SoNode* node, auto const& change) {
    node->enableNotify(false);
    change();
    node->enableNotify(true);
    node->touch();
    EXPECT_EQ(rowLines(tree.view), freshLines(scene));
  };
  silently(a, [&] {
    a->removeChild(0);
    a->addChild(new SoCube);
    a->insertChild(new SoSeparator, 0);
  });
  silently(b, [&] { b->removeChild(0); });
  silently(shape, [&] { shape->vertexProperty.setValue(new SoVertexProperty); });
  silently(kit, [&] { kit->setPart("contents", new SoCube); });
  // Far below the node that is touched.
  silently(scene, [&] {
    b->addChild(new SoSeparator);
    shape->vertexProperty.setValue(nullptr);
    kit->setPart("childList[0]", new SoSeparatorKit);
  });
  silently(kit, [&] {
    auto* const inner = static_cast<SoBaseKit*>(kit->getPart("childList[0]", false));
    inner->setPart("transform", SoNode::create(SoType::fromName("Transform")));
  });
  shape->vertexProperty.enableNotify(false);
  shape->vertexProperty.setValue(new SoVertexProperty);
  shape->vertexProperty.enableNotify(true);
  shape->vertexProperty.touch();
  EXPECT_EQ(rowLines(tree.view), freshLines(scene));
}

TEST_F(TopologyTest, NodesBecomePartsAndCeaseToBe) {
  SoRef<SoWrapperKit> const kit(new SoWrapperKit);
  auto* const contents = static_cast<SoGroup*>(kit->getPart("contents", true));
  SoRef<SoNode> const transform(SoNode::create(SoType::fromName("Transform")));
  contents->addChild(transform);
  WatchedTree tree(kit);
  SoReferencedNodeManager const& references = *tree.view.getReferencedNodeManager();
  EXPECT_EQ(references.nodeMapCount(transform), 1);
  kit->setPart("transform", transform);
  EXPECT_EQ(rowLines(tree.view), freshLines(kit));
  EXPECT_EQ(references.nodeMapCount(transform), 0);
  kit->setPart("transform", nullptr);
  EXPECT_EQ(rowLines(tree.view), freshLines(kit));
  EXPECT_EQ(references.nodeMapCount(transform), 1);
  contents->removeAllChildren();
  EXPECT_EQ(references.nodeMapCount(transform), 0);

  // The entries of a list take their names from their places.
  kit->getPart("childList", true);
  auto* const list = static_cast<SoNodeKitListPart*>(kit->getPart("childList", false));
  auto* const container = new SoGroup;
  for (int i = 0; i < 2; ++i) container->addChild(new SoSeparatorKit);
  list->containerNode.setValue(container);
  EXPECT_EQ(rowLines(tree.view), freshLines(kit));
  list->insertChild(new SoSeparatorKit, 0);
  list->removeChild(1);
  EXPECT_EQ(rowLines(tree.view), freshLines(kit));
  EXPECT_NE(rowLines(tree.view).find("'childList[1]'"), std::string::npos);
  EXPECT_EQ(rowLines(tree.view).find("'childList[2]'"), std::string::npos);
}

TEST_F(TopologyTest, ARemovalOpensNoClosedRow) {
  SoRef<SoSeparator> const scene(
      static_cast<SoSeparator*>(read("Separator { DEF a Separator { Cube { } Sphere { } } Cone { } }")));
  WatchedTree tree(scene);
  tree.view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&tree.view));
  SoTreeViewItem* const a = tree.root()->child(0);
  tree.root()->setExpanded(true);
  a->setExpanded(true);
  tree.view.setCurrentItem(a->child(0));
  a->setExpanded(false);
  static_cast<SoGroup*>(a->getNode())->removeChild(0);
  QCoreApplication::processEvents();
  EXPECT_FALSE(a->isExpanded());

  // A group that is emptied and filled again, as programs do it in every frame, stays open.
  a->setExpanded(true);
  static_cast<SoGroup*>(a->getNode())->removeAllChildren();
  QCoreApplication::processEvents();
  static_cast<SoGroup*>(a->getNode())->addChild(new SoCube);
  QCoreApplication::processEvents();
  EXPECT_TRUE(a->isExpanded());
}

TEST_F(TopologyTest, WhatIsInSightStaysThere) {
  SoRef<SoSeparator> const scene(new SoSeparator);
  for (int i = 0; i < 100; ++i) scene->addChild(new SoSeparator);
  WatchedTree tree(scene);
  tree.view.resize(300, 300);
  tree.view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&tree.view));
  tree.root()->setExpanded(true);
  tree.view.scrollToItem(tree.root()->child(50), QTreeWidget::PositionAtTop);
  SoTreeViewItem* const top = tree.view.itemAt(QPoint(50, 5));
  ASSERT_EQ(top, tree.root()->child(50));
  auto const expectTop = [&](char const* what) {
    QCoreApplication::processEvents();
    EXPECT_EQ(tree.view.itemAt(QPoint(50, 5)), top) << what;
  };
  scene->addChild(new SoCube);
  expectTop("added behind");
  scene->removeChild(90);
  expectTop("removed behind");
  static_cast<SoGroup*>(scene->getChild(10))->addChild(new SoCube);
  expectTop("added below a closed row");
}

/// Puts another scene in the place of the one that was just set.
void replaceScene(void* scene, SoSensor* sensor) {
  auto* const selection = static_cast<SoSelection*>(static_cast<SoNodeSensor*>(sensor)->getAttachedNode());
  static_cast<SoNodeSensor*>(sensor)->detach();
  selection->replaceChild(0, static_cast<SoNode*>(scene));
}

TEST_F(TopologyTest, ASceneThatIsReplacedInsideOfTheChangeThatSetIt) {
  SoRef<SoSelection> const selection(new SoSelection);
  SoRef<SoSeparator> const better(new SoSeparator);
  better->addChild(new SoCube);
  SoNodeSensor first(replaceScene, better); // hears of the change before the tree does
  first.setPriority(0);
  first.attach(selection);
  SoVantleTreeView view;
  view.setGraphSelection(selection);
  selection->addChild(new SoSeparator); // is gone by the time the tree hears of it
  ASSERT_TRUE(view.firstChild());
  EXPECT_EQ(rowLines(view), freshLines(better));
}

struct FileWatch {
  SoVantleTreeView const* view;
  std::vector<std::string> rowsAtName;
};

TEST_F(TopologyTest, TheNameOfAFileAloneChangesNoRows) {
  writeFile("a.kv", "#Kestrava V1.0 ascii\nSeparator { Cube { } }\n");
  writeFile("b.kv", "#Kestrava V1.0 ascii\nSeparator { Cone { } Sphere { } }\n");
  SoRef<SoSeparator> const scene(new SoSeparator);
  auto* const file = new SoFile;
  scene->addChild(file);
  file->name.setValue(toSbString(folder() + "/a.kv"));
  WatchedTree tree(scene);
  std::string const before = rowLines(tree.view);
  FileWatch watch{&tree.view, {}};
  SoNodeSensor sensor(
      [](void* data, SoSensor* told) {
        auto* const seen = static_cast<FileWatch*>(data);
        if (static_cast<SoNodeSensor*>(told)->getTriggerField())
          seen->rowsAtName.push_back(rowLines(*seen->view));
      },
      &watch);
  sensor.setPriority(0);
  sensor.attach(tree.selection); // after the tree
  sensor.setTriggerPathFlag(false);
  file->name.setValue(toSbString(folder() + "/b.kv"));
  ASSERT_EQ(watch.rowsAtName.size(), 1u);
  EXPECT_EQ(watch.rowsAtName[0], before);
  EXPECT_EQ(rowLines(tree.view), freshLines(scene));
  file->name.setValue(toSbString(folder() + "/none.kv"));
  EXPECT_EQ(rowLines(tree.view, false), "0 Separator\n  0 File\n");
}

struct Nothing : VntCommand {
  void execute() override {}
  void undo() override {}
  void redo() override {}
};

TEST_F(TopologyTest, AReloadedFileEmptiesTheHistory) {
  QString const path = writeFile("part.kv", "#Kestrava V1.0 ascii\nSeparator { Cube { } }\n");
  SoRef<SoSeparator> const scene(new SoSeparator);
  auto* file = new SoFile;
  file->name.setValue(toSbString(path));
  scene->addChild(file);
  start(scene);
  Nothing command;
  commands()->addCommand(&command);
  EXPECT_TRUE(commands()->isChanged());
  writeFile("part.kv", "#Kestrava V1.0 ascii\nSeparator { Cone { } }\n");
  file->reload();
  EXPECT_FALSE(commands()->isChanged());
  EXPECT_TRUE(QString::fromStdString(rowLines(*tree(), false)).contains("Cone"));
}

} // namespace
