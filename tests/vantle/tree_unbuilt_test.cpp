// Rows that are not built before somebody opens them.

#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/tree/SoReferencedNodeManager.h"

namespace {

using UnbuiltTest = VantleTest;

/// Each group holds the next one twice.
SoRef<SoSeparator> doubled(int levels) {
  auto* below = new SoSeparator;
  below->setName("lowest");
  SoRef<SoSeparator> top(below);
  for (int i = 1; i < levels; ++i) {
    auto* above = new SoSeparator;
    above->addChild(top);
    above->addChild(top);
    top = SoRef<SoSeparator>(above);
  }
  return top;
}

TEST_F(UnbuiltTest, AGraphThatSharesExponentially) {
  SoRef<SoSeparator> const scene = doubled(30);
  WatchedTree tree;
  tree.view.setRowLimit(10'000);
  tree.selection->addChild(scene);
  SoReferencedNodeManager const* const rows = tree.view.getReferencedNodeManager();
  EXPECT_LE(rows->rowCount(), 10'000);
  EXPECT_GT(rows->rowCount(), 9'900);
  double const places = 1073741823; // 2^30 - 1
  EXPECT_EQ(tree.view.placesNotBuilt(), places - rows->rowCount());
  tree.view.show();

  // A row is opened: its children come, and what is below them can be opened in turn.
  SoTreeViewItem* row = tree.root()->child(1);
  ASSERT_TRUE(row->isUnbuilt());
  EXPECT_EQ(row->childCount(), 0);
  EXPECT_TRUE(tree.view.model()->hasChildren(tree.view.model()->index(1, 0, tree.view.model()->index(0, 0))));
  row->setExpanded(true);
  EXPECT_FALSE(row->isUnbuilt());
  ASSERT_EQ(row->childCount(), 2);
  EXPECT_EQ(row->child(1)->getSceneIndex(), 1);
  EXPECT_TRUE(row->child(1)->isUnbuilt());
  EXPECT_EQ(tree.view.placesNotBuilt(), places - rows->rowCount());

  // A path leads on, however little is built of it.
  SoRef<SoPath> const path(new SoPath(tree.selection));
  path->append(0);
  for (int i = 1; i < 30; ++i) path->append(1);
  SoTreeViewItem* const last = tree.view.getItemFromPath(path, 0);
  ASSERT_NE(last, nullptr);
  EXPECT_EQ(last->text(1), "lowest");
  EXPECT_EQ(last->childCount(), 0);
  EXPECT_FALSE(last->isUnbuilt());

  // Changes cost what is built.
  static_cast<SoGroup*>(last->getNode())->addChild(new SoCube);
  EXPECT_EQ(last->childCount(), 1);
  static_cast<SoGroup*>(row->getNode())->removeAllChildren();
  EXPECT_EQ(row->childCount(), 0);
  for (SoTreeViewItem* item = tree.root(); item; item = SoVantleTreeView::itemBelowInTree(item)) {
    EXPECT_FALSE(item->isUnbuilt() && item->getNode() == row->getNode()) << "nothing is left to build";
  }
  EXPECT_EQ(tree.view.placesNotBuilt(), 0);
  tree.view.expandAll(tree.root());
  tree.selection->removeAllChildren();
  EXPECT_FALSE(tree.view.isAnyUnbuilt());
}

TEST_F(UnbuiltTest, WithinTheLimitEverythingIsBuilt) {
  SoRef<SoSeparator> const scene = doubled(10);
  WatchedTree tree;
  tree.view.setRowLimit(1023);
  tree.selection->addChild(scene);
  EXPECT_EQ(tree.view.getReferencedNodeManager()->rowCount(), 1023);
  EXPECT_FALSE(tree.view.isAnyUnbuilt());
  scene->addChild(new SoCube);
  EXPECT_EQ(tree.root()->childCount(), 3) << "what is open takes further children";
}

TEST_F(UnbuiltTest, RowsThatComeWithTheFilter) {
  SoRef<SoSeparator> const scene = doubled(5);
  auto* const lowest = static_cast<SoGroup*>(SoNode::getByName("lowest"));
  lowest->addChild(new SoCube);
  WatchedTree tree;
  tree.view.setRowLimit(3);
  tree.selection->addChild(scene);
  tree.view.setFilter(Vnt::ALL_NODE_CATEGORIES - Vnt::Shape);
  SoTreeViewItem* row = tree.root();
  while (row->text(0) != "Cube") {
    row->setExpanded(true);
    ASSERT_NE(row->child(0), nullptr);
    row = row->child(0);
  }
  EXPECT_TRUE(row->isHidden());
}

/// Waits for the dialog of a long build.
class AtProgress : public QObject {
 public:
  explicit AtProgress(std::function<void(QProgressDialog*)> act) : m_act(std::move(act)) {
    connect(&m_timer, &QTimer::timeout, this, [this] {
      auto* const dialog = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
      if (!dialog || dialog->value() <= 0) return;
      m_timer.stop();
      wasShown = true;
      m_act(dialog);
    });
    m_timer.start(1);
  }
  bool wasShown = false;

 private:
  QTimer m_timer;
  std::function<void(QProgressDialog*)> m_act;
};

SoRef<SoSeparator> manyPlaces() {
  SoRef<SoSeparator> const scene(new SoSeparator);
  for (int i = 0; i < 30; ++i) scene->addChild(doubled(14));
  return scene;
}

TEST_F(UnbuiltTest, ABuildThatIsStopped) {
  start(read("Cube { }"));
  tree()->setPatience(0);
  SoRef<SoSeparator> const scene = manyPlaces();
  AtProgress const progress([](QProgressDialog* dialog) {
    auto* const stop = dialog->findChild<QPushButton*>();
    ASSERT_NE(stop, nullptr);
    QTest::mouseClick(stop, Qt::LeftButton);
  });
  commands()->setScene(scene);
  ASSERT_TRUE(progress.wasShown) << "the build took no time";
  SoReferencedNodeManager const* const rows = tree()->getReferencedNodeManager();
  EXPECT_EQ(rows->rowCount() + tree()->placesNotBuilt(), 1 + 30.0 * ((1 << 14) - 1));
  EXPECT_GT(tree()->placesNotBuilt(), 0);
  ASSERT_EQ(tree()->firstChild()->childCount(), 30);
  SoTreeViewItem* const last = tree()->firstChild()->child(29);
  EXPECT_TRUE(last->isUnbuilt());
  last->setExpanded(true);
  EXPECT_EQ(last->childCount(), 2);
}

TEST_F(UnbuiltTest, TheGraphChangesWhileItIsBuilt) {
  start(read("Cube { }"));
  tree()->setPatience(0);
  SoRef<SoSeparator> const scene = manyPlaces();
  AtProgress const progress([&scene](QProgressDialog*) {
    // Built by now, being built, and still to come.
    for (int child : {29, 15, 0}) {
      auto* const group = static_cast<SoGroup*>(scene->getChild(child));
      group->removeChild(1);
      group->addChild(new SoCube);
    }
    scene->removeChild(16);
    scene->insertChild(new SoCube, 0);
  });
  commands()->setScene(scene);
  ASSERT_TRUE(progress.wasShown) << "the build took no time";
  EXPECT_FALSE(tree()->isAnyUnbuilt());
  SoVantleTreeView fresh;
  fresh.initTree(scene);
  EXPECT_EQ(fresh.getReferencedNodeManager()->rowCount(), tree()->getReferencedNodeManager()->rowCount());
  EXPECT_TRUE(rowLines(*tree()) == rowLines(fresh));
}

TEST_F(UnbuiltTest, AnotherSceneOrTheEndComesWhileItIsBuilt) {
  start(read("Cube { }"));
  tree()->setPatience(0);
  {
    AtProgress const progress([this](QProgressDialog*) { commands()->setScene(read("Sphere { }")); });
    commands()->setScene(manyPlaces());
    ASSERT_TRUE(progress.wasShown);
    EXPECT_EQ(rowLines(*tree(), false), "0 Separator\n  0 Sphere\n");
    EXPECT_FALSE(tree()->isAnyUnbuilt());
  }
  AtProgress const progress([](QProgressDialog*) { SoVantleImpl::stop(true); });
  commands()->setScene(manyPlaces());
  EXPECT_TRUE(progress.wasShown);
  QCoreApplication::processEvents();
  EXPECT_FALSE(SoVantleImpl::isRunning());
}

} // namespace
