// The rows of one node: how they are known, and the walk through them.

#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/tree/SoReferencedNodeManager.h"

namespace {

using ReferencesTest = VantleTest;
using Rows = QList<SoTreeViewItem*>;

TEST_F(ReferencesTest, ANodeThatStandsOnceHasNoWalk) {
  WatchedTree tree(read("Separator { Cube { } DEF s Sphere { } USE s }"));
  SoReferencedNodeManager& references = *tree.view.getReferencedNodeManager();
  SoTreeViewItem* const cube = tree.root()->child(0);
  references.setReferencedList(cube);
  references.setReferencedList(nullptr);
  EXPECT_EQ(references.getAllReferencedItems(cube), nullptr);
  EXPECT_EQ(references.getNextRefItem(cube), nullptr);
  EXPECT_EQ(references.getPreviousRefItem(cube), nullptr);
  EXPECT_EQ(references.getNextRefItem(nullptr), nullptr);
  tree.view.showAllReferences(cube);
  EXPECT_FALSE(cube->showRefImage());

  // Of two places, once nobody asks for the walk any more.
  SoTreeViewItem* const sphere = tree.root()->child(1);
  tree.view.showAllReferences(sphere);
  EXPECT_EQ(references.getNextRefItem(sphere), tree.root()->child(2));
  tree.view.removeAllReferences(sphere);
  EXPECT_EQ(references.getNextRefItem(sphere), nullptr);
  EXPECT_FALSE(sphere->showRefImage() || tree.root()->child(2)->showRefImage());
}

TEST_F(ReferencesTest, TheWalkGoesAroundAndPassesOverWhatIsOut) {
  WatchedTree tree(read("Separator { DEF c Cube { } Group { USE c } Group { USE c USE c } }"));
  SoReferencedNodeManager& references = *tree.view.getReferencedNodeManager();
  Rows rows;
  references.getAllItems(tree.root()->child(0)->getNode(), rows);
  ASSERT_EQ(rows.size(), 4);
  tree.view.showAllReferences(rows[2]);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(references.getNextRefItem(rows[i]), rows[(i + 1) % 4]) << i;
    EXPECT_EQ(references.getPreviousRefItem(rows[i]), rows[(i + 3) % 4]) << i;
    EXPECT_TRUE(rows[i]->showRefImage());
  }
  // Over the ends, too.
  rows[0]->setIsInSceneGraph(false);
  rows[3]->setIsInSceneGraph(false);
  EXPECT_EQ(references.getNextRefItem(rows[2]), rows[1]);
  EXPECT_EQ(references.getPreviousRefItem(rows[1]), rows[2]);
  // With nothing left to go to the walk ends.
  for (SoTreeViewItem* row : rows) row->setIsInSceneGraph(false);
  EXPECT_EQ(references.getNextRefItem(rows[1]), nullptr);
  EXPECT_EQ(references.getPreviousRefItem(rows[1]), nullptr);
}

TEST_F(ReferencesTest, TheWalkFollowsTheGraph) {
  SoRef<SoSeparator> const scene(
      static_cast<SoSeparator*>(read("Separator { DEF c Cube { } Group { USE c } Group { } }")));
  WatchedTree tree(scene);
  SoReferencedNodeManager& references = *tree.view.getReferencedNodeManager();
  SoRef<SoNode> const cube(scene->getChild(0));
  SoTreeViewItem* const first = tree.root()->child(0);
  tree.view.showAllReferences(first);
  auto* const last = static_cast<SoGroup*>(scene->getChild(2));
  last->addChild(cube);
  SoTreeViewItem* const added = tree.root()->child(2)->child(0);
  EXPECT_TRUE(added->showRefImage()) << "a place that comes while references are shown";
  EXPECT_EQ(references.getPreviousRefItem(first), added);
  last->insertChild(new SoCube, 0);
  scene->removeChild(1);
  EXPECT_EQ(references.getNextRefItem(first), added);
  EXPECT_EQ(references.getNextRefItem(added), first);
  // The last one that is left walks to itself; another scene knows nothing of it.
  scene->removeChild(1);
  EXPECT_EQ(tree.root()->childCount(), 1);
  EXPECT_EQ(references.getNextRefItem(first), first);
  tree.selection->replaceChild(0, new SoSeparator);
  EXPECT_EQ(references.findItem(cube), nullptr);
  EXPECT_EQ(references.getNextRefItem(tree.root()), nullptr);
}

TEST_F(ReferencesTest, TheNodeMapHoldsValuesOfFieldsAndNoParts) {
  SoRef<SoSeparator> const scene(new SoSeparator);
  SoRef<SoVertexProperty> const points(new SoVertexProperty);
  auto* const shape = new SoIndexedFaceSet;
  shape->vertexProperty.setValue(points);
  auto* const kit = new SoShapeKit;
  kit->setPart("shape", shape);
  SoRef<SoNode> const transform(kit->getPart("transform", true));
  for (SoNode* node : std::initializer_list<SoNode*>{kit, shape, transform, points}) scene->addChild(node);
  WatchedTree tree(scene);
  SoReferencedNodeManager& references = *tree.view.getReferencedNodeManager();
  EXPECT_EQ(references.nodeMapCount(shape), 0) << "a part, and a child of a group";
  EXPECT_EQ(references.nodeMapCount(transform), 0);
  EXPECT_EQ(references.nodeMapCount(kit), 0);
  EXPECT_EQ(references.nodeMapCount(points), 2) << "below the part and below the child, not as a child";
  Rows rows;
  references.getAllItems(points, rows);
  ASSERT_EQ(rows.size(), 3);

  // The same row again makes no second entry.
  references.addItem(rows[0]);
  references.addItem(nullptr);
  EXPECT_EQ(references.nodeMapCount(points), 2);
  references.getAllItems(points, rows = {});
  EXPECT_EQ(rows.size(), 3);

  kit->setPart("shape", new SoCube);
  EXPECT_EQ(references.nodeMapCount(points), 1);
  shape->vertexProperty.setValue(nullptr);
  EXPECT_EQ(references.nodeMapCount(points), 0);
  EXPECT_EQ(references.findItem(points), tree.root()->child(3));
}

TEST_F(ReferencesTest, FamiliesAreTheRowsOfOneSlot) {
  // The inner group stands at two places, and in it the cube twice.
  WatchedTree tree(read("Separator { DEF g Group { DEF c Cube { } USE c } Group { USE g } USE c }"));
  SoReferencedNodeManager& references = *tree.view.getReferencedNodeManager();
  SoTreeViewItem* const inner = tree.root()->child(0);
  SoTreeViewItem* const again = tree.root()->child(1)->child(0);
  SoNode* const cube = inner->child(0)->getNode();
  QList<Rows*> families;
  references.searchItemFamilies(cube, families);
  ASSERT_EQ(families.size(), 3);
  Rows all;
  for (Rows const* family : families) all << *family;
  EXPECT_EQ(all.size(), 5);
  EXPECT_TRUE(std::any_of(families.begin(), families.end(), [&](Rows* f) {
    return *f == Rows({inner->child(1), again->child(1)});
  }));
  qDeleteAll(families);
  families.clear();
  references.getDuplicatedItemsSets(inner->child(0), families);
  EXPECT_EQ(families.size(), 3);
  qDeleteAll(families);

  Rows rows;
  references.getDuplicatedItemsSet(inner->child(0), rows);
  EXPECT_EQ(rows, Rows({inner->child(0), again->child(0)}));
  references.getDuplicatedItemsSet(cube, inner->getNode(), 1, rows = {});
  EXPECT_EQ(rows, Rows({inner->child(1), again->child(1)}));
  references.searchItemFamily(cube, inner->getNode(), 7, rows = {});
  EXPECT_TRUE(rows.isEmpty());
}

} // namespace
