// Looking at a graph leaves it as it was.

#include <QTest>
#include <cstdlib>
#include <filesystem>
#include <unordered_set>

#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoError.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "kestrava/sensors/SoNodeSensor.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/session/VntNodeCategory.h"
#include "vantle/tree/SoReferencedNodeManager.h"

namespace {

namespace fs = std::filesystem;
using InertTest = VantleTest;

/// All that can be seen of a node without asking for values that wait to be fetched.
struct NodeState {
  SoNode* node;
  std::uint64_t id;
  int references, auditors;
  SbName name;
  std::vector<int> fields; // flags, and connections
  bool operator==(NodeState const&) const = default;
};

/// Every node below a node, hidden children included.
std::vector<SoNode*> nodesBelow(SoNode* root) {
  std::vector<SoNode*> nodes{root};
  std::unordered_set<SoNode*> seen{root};
  auto const add = [&](SoNode* node) {
    if (node && seen.insert(node).second) nodes.push_back(node);
  };
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    SoNode* const node = nodes[i];
    SoChildList const* const children = node->getChildren();
    for (int k = 0; children && k < children->getLength(); ++k) add((*children)[k]);
    for (int k = 0; k < node->getNumFields(); ++k) {
      SoField* const field = node->getField(k);
      if (field->needsEvaluation()) continue;
      if (auto* single = dynamic_cast<SoSFNode*>(field)) add(single->getValue());
      auto* const many = dynamic_cast<SoMFNode*>(field);
      for (int m = 0; many && m < many->getNumValues(); ++m) add(many->getNode(m));
    }
  }
  return nodes;
}

std::vector<NodeState> stateOf(SoNode* root) {
  std::vector<NodeState> states;
  for (SoNode* node : nodesBelow(root)) {
    NodeState state{
        node, node->getNodeId(), node->getRefCount(), node->getAuditors().getLength(), node->getName(), {}};
    for (int i = 0; i < node->getNumFields(); ++i) {
      SoField const* const field = node->getField(i);
      state.fields.push_back(field->isDefault() | field->isIgnored() << 1 | field->isConnected() << 2 |
                             field->isWatched() << 3 | field->hasFollowers() << 4 |
                             field->needsEvaluation() << 5 | field->getFieldType() << 6);
    }
    states.push_back(std::move(state));
  }
  return states;
}

std::string textOf(SoNode* root) {
  SoOutput out;
  out.setBuffer();
  SoWriteAction(&out).apply(root);
  return out.takeBuffer();
}

/// What people do who only look.
void lookAt(SoNode* scene) {
  WatchedTree tree(scene);
  SoVantleTreeView& view = tree.view;
  view.resize(500, 400);
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  view.expandAll(view.firstChild());
  std::vector<SoTreeViewItem*> rows;
  for (SoTreeViewItem* row = view.firstChild(); row; row = view.itemBelowInTree(row)) rows.push_back(row);
  for (std::size_t i = 0; i < rows.size(); i += 1 + rows.size() / 200) {
    SoTreeViewItem* const row = rows[i];
    view.setCurrentItem(row);
    view.scrollToItem(row);
    view.showAllReferences(row);
    view.nextReference();
    view.previousReference();
    if (i % 3 == 0) view.removeAllReferences(row);
    row->setBookmarked(!row->isBookmarked());
    for (int column = 0; column < view.columnCount(); ++column) {
      for (int role :
           {Qt::DisplayRole, Qt::DecorationRole, Qt::ToolTipRole, Qt::FontRole, Qt::ForegroundRole})
        row->data(column, role);
    }
    EXPECT_TRUE(view.getReferencedNodeManager()->findItem(row->getNode()));
  }
  QList<SoTreeViewItem*> found;
  view.getReferencedNodeManager()->searchAllReferencedItems(rows.back()->getNode(), found);
  view.nextBookmark();
  view.clearBookmark();
  for (int mask : {0, Vnt::ALL_NODE_CATEGORIES - Vnt::Shape, static_cast<int>(Vnt::ALL_NODE_CATEGORIES)}) {
    view.setFilter(mask);
    QCoreApplication::processEvents();
  }
  for (int mode = 0; mode < 4; ++mode) EXPECT_EQ(view.find(mode, "~nowhere~", 0), nullptr);
  view.collapseAll();
  view.expandToDepth(2);
  view.resetReferences();
  QCoreApplication::processEvents();
  view.setCurrentItem(nullptr);
  tree.selection->deselectAll();
}

int filesAskedFor = 0;

/// Looks at a scene and compares it with what it was before.
void expectInert(SoNode* scene, std::string const& what) {
  SoRef<SoNode> const kept(scene);
  int notifications = 0;
  SoNodeSensor sensor([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &notifications);
  sensor.setPriority(0);
  sensor.attach(scene);
  SoWWWInline::setFetchURLCallBack([](SbString const&, void*, SoWWWInline*) { ++filesAskedFor; });
  filesAskedFor = 0;
  std::vector<NodeState> const before = stateOf(scene);
  lookAt(scene);
  std::vector<NodeState> const after = stateOf(scene);
  SoWWWInline::setFetchURLCallBack(nullptr);
  EXPECT_EQ(notifications, 0) << what;
  EXPECT_EQ(filesAskedFor, 0) << what;
  ASSERT_EQ(before.size(), after.size()) << what;
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(before[i].references, after[i].references) << what;
    ASSERT_TRUE(before[i] == after[i])
        << what << ": " << after[i].node->getTypeId().getName().c_str() << ", node " << i;
  }
}

SoNode* readScene(fs::path const& path) {
  SoInput in;
  return in.openFile(path.c_str()) ? SoDB::readAll(&in) : nullptr;
}

/// Two readings of a file, of which one was looked at, are written alike.
void expectInertFiles(fs::path const& folder, int atLeast) {
  int count = 0;
  for (auto const& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".kv" && entry.path().extension() != ".kvz") continue;
    SoRef<SoNode> const seen(readScene(entry.path())), unseen(readScene(entry.path()));
    ASSERT_TRUE(seen && unseen) << entry.path();
    expectInert(seen, entry.path().filename().string());
    EXPECT_EQ(textOf(seen), textOf(unseen)) << entry.path();
    ++count;
  }
  EXPECT_GE(count, atLeast);
}

TEST_F(InertTest, ScenesOfTheGallery) { expectInertFiles(VANTLE_SOURCE_DIR "/scenes", 30); }

TEST_F(InertTest, LargeScenes) {
  char const* const given = std::getenv("VANTLE_SCENES");
  fs::path const folder = given ? given : VANTLE_SOURCE_DIR "/../shared/scenes";
  if (!fs::is_directory(folder)) GTEST_SKIP() << "the folder with the large scenes is not here";
  expectInertFiles(folder, 6);
}

TEST_F(InertTest, OneNodeOfEachType) {
  SoRef<SoSeparator> const scene(new SoSeparator);
  int count = 0;
  for (int index = 1; index < SoType::getNumTypes(); ++index) {
    SoType const type = SoType::fromIndex(index);
    if (!type.canCreateInstance() || !type.isDerivedFrom(SoNode::getClassTypeId())) continue;
    SoRef<SoNode> const node(SoNode::create(type));
    ASSERT_TRUE(node) << type.getName().c_str();
    scene->addChild(node);
    scene->addChild(node);
    ++count;
    // A kit with all its parts, an inline that has not been loaded.
    if (auto* kit = dynamic_cast<SoBaseKit*>(node.get())) {
      for (int part = 1; part < kit->getNodekitCatalog().getNumEntries(); ++part)
        kit->getPart(kit->getNodekitCatalog().getName(part).str(), true);
    }
    if (auto* external = dynamic_cast<SoWWWInline*>(node.get())) external->name.setValue("elsewhere");
    // A node field with a value.
    for (int i = 0; i < node->getNumFields() && !dynamic_cast<SoBaseKit*>(node.get()); ++i) {
      SoField* const field = node->getField(i);
      auto* const single = dynamic_cast<SoSFNode*>(field);
      if (single && !single->getValue()) single->setValue(new SoCube);
      if (auto* many = dynamic_cast<SoMFNode*>(field)) many->setValues({new SoCube, nullptr, new SoCube});
    }
  }
  EXPECT_GT(count, 100);
  expectInert(scene, "one of each type");
}

} // namespace
