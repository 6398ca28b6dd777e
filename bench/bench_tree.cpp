// The scene tree and the list of fields against bare widgets that show the same.

#include <malloc.h>

#include <QApplication>
#include <QTreeWidget>

#include "bench/bench.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoVantleList.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

void makeApplication() {
  if (QCoreApplication::instance()) return;
  if (!qEnvironmentVariableIsSet("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "bench";
  static char* argv[] = {name, nullptr};
  new QApplication(argc, argv);
}

/// Four levels of ten groups a group, then leaves of a transform and a box, named.
SoRef<SoSeparator> makeScene(int leaves) {
  SoRef<SoSeparator> const root(new SoSeparator);
  std::vector<SoGroup*> level{root};
  int number = 0;
  for (int depth = 0; depth < 4; ++depth) {
    std::vector<SoGroup*> next;
    for (SoGroup* group : level) {
      for (int i = 0; i < 10; ++i) {
        auto* below = new SoSeparator;
        below->setName(SbString::format("group_%d", number++));
        group->addChild(below);
        next.push_back(below);
      }
    }
    level = std::move(next);
  }
  for (int i = 0; i < leaves; ++i) {
    auto* leaf = new SoSeparator;
    leaf->setName(SbString::format("leaf_%d", i));
    leaf->addChild(new SoTransform);
    leaf->addChild(new SoCube);
    level[i * level.size() / leaves]->addChild(leaf);
  }
  return root;
}

struct Row {
  QString type, name, references;
  QIcon icon;
  int childCount;
};

/// What a tree shows, in the order from above to below.
std::vector<Row> rowsOf(SoVantleTreeView const& tree) {
  std::vector<Row> rows;
  for (SoTreeViewItem* row = tree.firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
    rows.push_back({row->text(0), row->text(1), row->text(2), row->icon(0), row->childCount()});
    for (QString* text : {&rows.back().type, &rows.back().name, &rows.back().references}) text->squeeze();
  }
  return rows;
}

QTreeWidgetItem* copyRows(std::vector<Row> const& rows, std::size_t& next) {
  Row const& row = rows[next++];
  auto* const item = new QTreeWidgetItem;
  // Texts of their own, as a program that fills a tree makes them.
  item->setText(0, QString(row.type.constData(), row.type.size()));
  item->setText(1, QString(row.name.constData(), row.name.size()));
  item->setText(2, QString(row.references.constData(), row.references.size()));
  item->setIcon(0, row.icon);
  QList<QTreeWidgetItem*> children;
  children.reserve(row.childCount);
  for (int i = 0; i < row.childCount; ++i) children.append(copyRows(rows, next));
  item->addChildren(children);
  return item;
}

void fillBare(QTreeWidget& bare, std::vector<Row> const& rows) {
  bare.setColumnCount(5);
  std::size_t next = 0;
  bare.addTopLevelItem(copyRows(rows, next));
}

double allocatedBytes() {
  struct mallinfo2 const info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

constexpr int LEAVES = 100'000;

} // namespace

BENCH(tree_build) {
  makeApplication();
  SoRef<SoSeparator> const scene = makeScene(LEAVES);
  std::vector<Row> rows;
  double const own = bench::fastest(
      [&] {
        SoVantleTreeView tree;
        tree.initTree(scene);
        if (rows.empty()) rows = rowsOf(tree);
      },
      3);
  double const bare = bench::fastest(
      [&] {
        QTreeWidget tree;
        fillBare(tree, rows);
      },
      3);
  double const count = static_cast<double>(rows.size());
  bench::report({"", own * 1e6 / count, "us/row", bare * 1e6 / count});
}

BENCH(tree_memory) {
  makeApplication();
  SoRef<SoSeparator> const scene = makeScene(LEAVES);
  SoVantleTreeView tree;
  double const before = allocatedBytes();
  tree.initTree(scene);
  double const own = allocatedBytes() - before;
  std::vector<Row> const rows = rowsOf(tree);
  QTreeWidget bare;
  double const beforeBare = allocatedBytes();
  fillBare(bare, rows);
  double const floor = allocatedBytes() - beforeBare;
  double const count = static_cast<double>(rows.size());
  bench::report({"", own / count, "bytes/row", floor / count});
}

namespace {

/// A tree of a million rows, and how long going through all of them takes.
struct MillionRows {
  MillionRows() {
    tree.initTree(scene);
    walk = bench::fastest([this] {
      int count = 0;
      for (QTreeWidgetItemIterator it(&tree); *it; ++it) ++count;
      bench::keep(count);
    });
  }
  struct Application {
    Application() { makeApplication(); }
  } application;
  SoRef<SoSeparator> scene{makeScene(330'000)};
  SoVantleTreeView tree;
  double walk;
};

} // namespace

BENCH(tree_filter) {
  MillionRows rows;
  double const filter = bench::fastest([&] {
    rows.tree.setFilter(Vnt::ALL_NODE_CATEGORIES - Vnt::Shape);
    rows.tree.setFilter(Vnt::ALL_NODE_CATEGORIES);
  });
  bench::report({"", filter / 2 * 1e3, "ms", rows.walk * 1e3});
}

BENCH(tree_find) {
  MillionRows rows;
  for (auto const& [name, mode] : {std::pair{"tree_find, type", SoVantleTreeView::FIND_TYPE},
                                   std::pair{"tree_find, name", SoVantleTreeView::FIND_NAME},
                                   std::pair{"tree_find, address", SoVantleTreeView::FIND_ADDRESS}}) {
    double const find = bench::fastest([&] { bench::keep(rows.tree.find(mode, QStringLiteral("zyx"), 0)); });
    bench::report({name, find * 1e3, "ms", rows.walk * 1e3});
  }
}

// What the index from nodes to rows takes of the build; the build is the floor.
BENCH(tree_index) {
  makeApplication();
  SoRef<SoSeparator> const scene = makeScene(LEAVES);
  double const build = bench::fastest(
      [&] {
        SoVantleTreeView tree;
        tree.initTree(scene);
      },
      3);
  SoVantleTreeView tree;
  tree.initTree(scene);
  std::vector<SoTreeViewItem*> rows;
  for (SoTreeViewItem* row = tree.firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) rows.push_back(row);
  SoReferencedNodeManager* const references = tree.getReferencedNodeManager();
  double index = 1e9;
  for (int i = 0; i < 3; ++i) {
    references->clearNodeMap();
    index = std::min(index, bench::fastest(
                                [&] {
                                  for (SoTreeViewItem* row : rows) references->addItem(row);
                                },
                                1));
  }
  bench::report({"", index * 1e3, "ms", build * 1e3});
}

// A child of a group that stands at many places, against as many bare rows.
BENCH(tree_shared_child) {
  makeApplication();
  SoRef<SoSelection> const selection(new SoSelection);
  SoVantleTreeView tree;
  tree.setGraphSelection(selection);
  SoRef<SoSeparator> const scene = makeScene(LEAVES);
  auto* const shared = new SoSeparator;
  constexpr int PLACES = 1000;
  for (int i = 0; i < PLACES; ++i) {
    auto* const above = new SoSeparator;
    above->addChild(shared);
    scene->addChild(above);
  }
  selection->addChild(scene);
  QTreeWidget bare;
  std::vector<QTreeWidgetItem*> places;
  for (int i = 0; i < PLACES; ++i) places.push_back(new QTreeWidgetItem(&bare));
  double const own = bench::fastest([&] {
    for (int i = 0; i < 10; ++i) {
      shared->addChild(new SoCube);
      shared->removeChild(0);
    }
  });
  double const floor = bench::fastest([&] {
    for (int i = 0; i < 10; ++i) {
      for (QTreeWidgetItem* place : places) place->addChild(new QTreeWidgetItem);
      for (QTreeWidgetItem* place : places) delete place->takeChild(0);
    }
  });
  bench::report({"", own * 1e6 / 10 / PLACES, "us/place", floor * 1e6 / 10 / PLACES});
}

BENCH(tree_one_child) {
  makeApplication();
  SoRef<SoSelection> const selection(new SoSelection);
  SoVantleTreeView tree;
  tree.setGraphSelection(selection);
  SoRef<SoSeparator> const scene = makeScene(LEAVES);
  auto* const wide = new SoSeparator;
  for (int i = 0; i < 100'000; ++i) wide->addChild(new SoCube);
  auto* const narrow = new SoSeparator;
  scene->addChild(narrow);
  scene->addChild(wide);
  selection->addChild(scene);
  auto const add = [](SoGroup* group) {
    return bench::fastest([group] {
             for (int i = 0; i < 100; ++i) group->addChild(new SoCube);
           }) /
           100;
  };
  bench::report({"", add(wide) * 1e6, "us", add(narrow) * 1e6});
}

BENCH(field_list) {
  makeApplication();
  SoRef<SoIndexedFaceSet> const node(new SoIndexedFaceSet);
  SoVantleList list;
  list.setNode(node);
  std::vector<QStringList> texts;
  for (SoFieldItem* item = list.firstChild(); item; item = item->nextSibling()) {
    QStringList row;
    for (int i = 0; i < list.columnCount(); ++i) row << item->text(i);
    texts.push_back(row);
  }
  double const own = bench::fastest([&] {
    for (int i = 0; i < 100; ++i) list.setNode(node);
  });
  QTreeWidget bare;
  bare.setColumnCount(list.columnCount());
  double const floor = bench::fastest([&] {
    for (int i = 0; i < 100; ++i) {
      bare.clear();
      for (QStringList const& row : texts) new QTreeWidgetItem(&bare, row);
    }
  });
  bench::report({"", own * 1e4, "us", floor * 1e4});
}
