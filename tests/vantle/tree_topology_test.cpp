// Rows follow the live graph.

#include <QTest>
#include <random>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/kits/SoWrapperKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"
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

/// Changes a graph at random; groups, kits, lists and shapes with a node in a field take part.
class Changer {
 public:
  explicit Changer(unsigned seed) : m_random(seed) {
    for (int i = 0; i < 12; ++i)
      m_groups.emplace_back(i % 3 ? static_cast<SoGroup*>(new SoSeparator) : new SoSwitch);
    for (int i = 0; i < 8; ++i)
      m_leaves.emplace_back(i % 2 ? static_cast<SoNode*>(new SoCube) : new SoVertexProperty);
    for (int i = 0; i < 3; ++i) m_shapes.emplace_back(new SoIndexedFaceSet);
    for (int i = 0; i < 2; ++i) m_kits.emplace_back(new SoWrapperKit);
    for (int i = 0; i < 40; ++i) step();
  }

  SoGroup* root() const { return m_groups[0]; }

  void step() {
    SoGroup* const group = m_groups[number(m_groups.size())];
    int const count = group->getNumChildren();
    switch (number(12)) {
      case 0:
      case 1:
      case 2:
        group->addChild(node(group));
        break;
      case 3:
      case 4:
        group->insertChild(node(group), number(count + 1));
        break;
      case 5:
        if (count) group->replaceChild(number(count), node(group));
        break;
      case 6:
      case 7:
        if (count) group->removeChild(number(count));
        break;
      case 8:
        if (number(4) == 0) group->removeAllChildren();
        break;
      case 9:
        changeShape();
        break;
      case 10:
        changeKit();
        break;
      case 11:
        group->enableNotify(true);
        group->touch();
        break;
    }
  }

 private:
  int number(std::size_t end) { return static_cast<int>(m_random() % end); }

  /// Of those that do not hold the group themselves. Few groups, so that what grows stays small.
  SoNode* node(SoGroup* below) {
    switch (number(8)) {
      case 0:
        return m_shapes[number(m_shapes.size())];
      case 1:
        return m_kits[number(m_kits.size())];
      case 2:
      case 3: {
        SoGroup* const group = m_groups[number(m_groups.size())];
        // Downwards only: no circles, and a depth that ends.
        if (group > below && group != root()) return group;
        break;
      }
      default:
        break;
    }
    return m_leaves[number(m_leaves.size())];
  }

  void changeShape() {
    SoIndexedFaceSet* const shape = m_shapes[number(m_shapes.size())];
    shape->vertexProperty.setValue(number(3) ? m_leaves[number(4) * 2].get() : nullptr);
  }

  void changeKit() {
    SoWrapperKit* const kit = m_kits[number(m_kits.size())];
    switch (number(5)) {
      case 0:
        kit->setPart("contents", number(2) ? new SoSeparator : nullptr);
        break;
      case 1:
        kit->setPart("localTransform", nullptr);
        break;
      case 2:
        kit->getPart("localTransform", true);
        break;
      case 3:
        kit->setPart("childList[0]", new SoSeparatorKit);
        break;
      case 4:
        if (kit->getPart("childList[0]", false)) kit->setPart("childList[0]", nullptr);
        break;
    }
  }

  std::mt19937 m_random;
  std::vector<SoRef<SoGroup>> m_groups;
  std::vector<SoRef<SoNode>> m_leaves;
  std::vector<SoRef<SoIndexedFaceSet>> m_shapes;
  std::vector<SoRef<SoWrapperKit>> m_kits;
};

TEST_F(TopologyTest, RowsAreThoseOfAFreshTreeAfterAnyChange) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    Changer changer(seed);
    WatchedTree tree(changer.root());
    for (int i = 0; i < 700; ++i) {
      changer.step();
      std::string const rows = rowLines(tree.view);
      if (rows.size() > 400'000) break; // sharing has multiplied the places
      ASSERT_EQ(rows, freshLines(changer.root())) << "seed " << seed << ", step " << i;
      if (i % 10 == 0 && tree.root()->firstChild()) tree.view.setCurrentItem(tree.view.lastItem());
      if (i % 50 == 0) tree.view.expandAll(tree.root());
      if (i % 7 == 0) QCoreApplication::processEvents();
    }
    int count = 0;
    for (SoTreeViewItem* row = tree.root(); row; row = SoVantleTreeView::itemBelowInTree(row)) ++count;
    EXPECT_EQ(tree.view.getReferencedNodeManager()->rowCount(), count);
  }
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
