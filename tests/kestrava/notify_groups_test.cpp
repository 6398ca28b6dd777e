#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFaceSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "node_helpers.h"

using namespace node_test;

TEST(NotifyGroups, EveryOperationTellsExactlyWhatItDid) {
  SoRef<SoSeparator> const root(new SoSeparator);
  SoRef<SoNode> const a(new SoCube), b(new SoCube), c(new SoCube), d(new SoCube);
  Listener listener(root);
  struct Step {
    char const* what;
    std::function<void()> change;
    int type;
    SoNode* child;
    int index;
    int childrenThen;
  };
  Step const steps[] = {
      {"add", [&] { root->addChild(a); }, 1, a, 0, 1},
      {"add at the end", [&] { root->addChild(b); }, 1, b, 1, 2},
      {"insert in front", [&] { root->insertChild(c, 0); }, 2, c, 0, 3},
      {"insert at the end", [&] { root->insertChild(d, 3); }, 2, d, 3, 4},
      {"replace", [&] { root->replaceChild(1, d); }, 3, d, 1, 4},
      {"remove by index", [&] { root->removeChild(0); }, 4, c, 0, 3},
      {"remove by node", [&] { root->removeChild(b); }, 4, b, 1, 2},
      {"remove all", [&] { root->removeAllChildren(); }, 5, nullptr, -1, 0},
  };
  for (Step const& step : steps) {
    step.change();
    auto const calls = listener.take();
    ASSERT_EQ(calls.size(), 1u) << step.what;
    EXPECT_EQ(calls[0].type, step.type) << step.what;
    EXPECT_EQ(calls[0].node, root.get()) << step.what;
    EXPECT_EQ(calls[0].child, step.child) << step.what;
    EXPECT_EQ(calls[0].index, step.index) << step.what;
    EXPECT_EQ(calls[0].field, nullptr) << step.what;
    EXPECT_EQ(calls[0].childrenThen, step.childrenThen) << step.what;
    EXPECT_TRUE(calls[0].path.empty()) << step.what;
  }
  root->removeAllChildren();
  EXPECT_TRUE(listener.take().empty()) << "nothing was removed";
}

TEST(NotifyGroups, RefusedOperationsChangeNothingAndSaySo) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* inner = new SoSeparator;
  root->addChild(inner);
  Listener listener(root);
  DebugErrors errors;
  SoRef<SoNode> const cube(new SoCube);
  root->addChild(nullptr);
  inner->addChild(root);
  root->addChild(root);
  root->insertChild(cube, 2);
  root->insertChild(cube, -1);
  root->removeChild(1);
  root->removeChild(cube);
  root->replaceChild(0, root);
  EXPECT_EQ(errors.texts.size(), 8u);
  EXPECT_EQ(root->getNumChildren(), 1);
  EXPECT_EQ(inner->getNumChildren(), 0);
  EXPECT_TRUE(listener.take().empty());
}

TEST(NotifyGroups, AChangeBelowSeveralPlacesArrivesOnceWithOneOfThePaths) {
  // root holds left, right, and bottom itself; left and right hold bottom.
  SoRef<SoSeparator> const root(new SoSeparator), left(new SoSeparator), right(new SoSeparator),
      bottom(new SoSeparator);
  root->addChild(left);
  root->addChild(right);
  left->addChild(new SoCube);
  left->addChild(bottom);
  right->addChild(bottom);
  root->addChild(bottom);
  Listener listener(root), onLeft(left), onBottom(bottom);

  SoRef<SoMaterial> const material(new SoMaterial);
  bottom->addChild(material);
  auto calls = listener.take();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].node, bottom.get());
  std::vector<std::vector<int>> const paths{{0, 1}, {1, 0}, {2}};
  EXPECT_NE(std::find(paths.begin(), paths.end(), calls[0].path), paths.end());
  EXPECT_EQ(onLeft.take().at(0).path, std::vector<int>{1});
  EXPECT_TRUE(onBottom.take().at(0).path.empty());

  std::uint64_t const before = root->getNodeId();
  material->shininess = 0.5f;
  calls = listener.take();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].field, &material->shininess);
  EXPECT_EQ(calls[0].type, 0);
  EXPECT_EQ(calls[0].node, material.get());
  EXPECT_NE(root->getNodeId(), before);

  // Deep diamonds cost what they have of nodes, not of paths.
  SoRef<SoMaterial> const leaf(new SoMaterial);
  SoRef<SoNode> const chain = doublingChain(60, leaf, SoGroup::getClassTypeId());
  Listener onChain(chain);
  leaf->shininess = 0.1f;
  EXPECT_EQ(onChain.take().size(), 1u);
}

TEST(NotifyGroups, NodesInFieldsPassTheirChangesOn) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* faces = new SoFaceSet;
  SoRef<SoVertexProperty> const vertices(new SoVertexProperty);
  root->addChild(faces);
  Listener listener(root);
  faces->vertexProperty = vertices;
  EXPECT_EQ(listener.take().at(0).type, 0) << "no group has changed";
  vertices->vertex.setValue(SbVec3f(1, 2, 3));
  auto const calls = listener.take();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].field, &vertices->vertex);
  EXPECT_EQ(calls[0].node, vertices.get());
  faces->vertexProperty = nullptr;
  listener.take();
  vertices->vertex.setNum(0);
  EXPECT_TRUE(listener.take().empty());
}

TEST(NotifyGroups, FieldFlagsAndOverrideNotify) {
  SoRef<SoMaterial> const material(new SoMaterial);
  Listener listener(material);
  material->diffuseColor.setIgnored(true);
  EXPECT_EQ(listener.take().size(), 1u);
  material->diffuseColor.setIgnored(true);
  EXPECT_TRUE(listener.take().empty()) << "it was ignored already";
  material->setOverride(true);
  EXPECT_EQ(listener.take().size(), 1u);
  EXPECT_TRUE(material->isOverride());
  SoRef<SoCube> const cube(new SoCube);
  cube->setOverride(true);
  EXPECT_FALSE(cube->isOverride()) << "shapes override nothing";
}
