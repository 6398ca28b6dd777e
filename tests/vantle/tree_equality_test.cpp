// After any change the rows are those of a tree built afresh, and rows that stay are the same rows.

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <unordered_set>

#include "tests/vantle/CarelessPerson.h"
#include "tests/vantle/GraphChanger.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/SessionChild.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/session/VntNodeCategory.h"
#include "vantle/tree/SoReferencedNodeManager.h"

namespace {

using EqualityTest = VantleTest;
using Rows = QList<SoTreeViewItem*>;

/// What differs between the rows of two trees at the same place; null when nothing does.
char const* differenceOf(SoTreeViewItem const* a, SoTreeViewItem const* b, bool withNames) {
  if (a->fromSubTreeField() != b->fromSubTreeField()) return "sub-tree field flag";
  if (a->fromBaseKit() != b->fromBaseKit() || a->getBaseKit() != b->getBaseKit()) return "kit";
  if (a->baseKitPart() != b->baseKitPart() || a->partNumber() != b->partNumber()) return "part";
  if (withNames && (a->getNodeName() != b->getNodeName() || a->partName() != b->partName())) return "name";
  if (a->getParentPartName() != b->getParentPartName()) return "parent part";
  if (a->isPartPublic() != b->isPartPublic()) return "public part";
  if (a->isIgnored() != b->isIgnored() || a->isInSceneGraph() != b->isInSceneGraph()) return "ignored";
  if (a->isHidden() != b->isHidden()) return "hidden by the filter";
  if (static_cast<QTreeWidgetItem const*>(a)->isHidden() != a->isHidden()) return "hidden in the view";
  if (a->isRowSelectable() != b->isRowSelectable()) return "selectable";
  if (a->isDisabled() != b->isDisabled()) return "disabled";
  return nullptr;
}

bool sameNode(SoTreeViewItem const* a, SoTreeViewItem const* b) {
  return a->getNode() == b->getNode() && a->getFieldParent() == b->getFieldParent();
}

std::vector<SoTreeViewItem*> childrenOf(SoTreeViewItem const* row) {
  std::vector<SoTreeViewItem*> children;
  for (int i = 0; i < row->childCount(); ++i) children.push_back(row->rawChild(i));
  return children;
}

/// Every row as a line; of a row whose node is gone no more than its address.
std::string linesOf(SoVantleTreeView const& tree, std::vector<SoNode*> const& alive) {
  std::string lines;
  for (SoTreeViewItem* row = tree.firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
    for (SoTreeViewItem* above = row->parent(); above; above = above->parent()) lines += "  ";
    lines += std::to_string(row->getSceneIndex());
    if (std::find(alive.begin(), alive.end(), row->getNode()) == alive.end()) {
      lines += " not in the scene";
    } else {
      lines += " " + row->text(0).toStdString() + " '" + row->getNodeName().str() + "'";
      if (row->fromField()) lines += " in " + row->getFieldParent()->getName().str();
    }
    lines += " " + QString::number(reinterpret_cast<quintptr>(row->getNode()), 16).toStdString() + "\n";
  }
  return lines;
}

/// The lines of two texts that differ, those in common at both ends left out.
std::string differingLines(std::string const& is, std::string const& wanted) {
  QStringList a = QString::fromStdString(is).split('\n'), b = QString::fromStdString(wanted).split('\n');
  while (!a.isEmpty() && !b.isEmpty() && a.last() == b.last()) a.removeLast(), b.removeLast();
  qsizetype from = 0;
  while (from < a.size() && from < b.size() && a[from] == b[from]) ++from;
  from = std::max<qsizetype>(0, from - 4); // where it is
  return "is:\n" + a.mid(from).join('\n').toStdString() + "\nshould be:\n" +
         b.mid(from).join('\n').toStdString() + "\n";
}

/// A row as it was before a step.
struct Before {
  SoTreeViewItem* row;
  SoNode* node;
  SoField* field;
  bool expanded, bookmarked;
  std::vector<std::size_t> children;
};

enum Kind {
  PLAIN,
  SHOWN,    ///< on the screen
  LIMITED,  ///< of few rows the children are built, of the others when they are opened
  IGNORING, ///< nodes are taken out of the graph by their rows, and put back
  KINDS
};
constexpr int FEW_ROWS = 40;

/// The tree that is watched while its graph changes, with somebody who uses it meanwhile.
class WatchedChanger {
 public:
  WatchedChanger(unsigned seed, Kind kind) : m_kind(kind), m_changer(seed), m_random(seed) {
    if (kind == LIMITED) m_live.setRowLimit(FEW_ROWS);
    m_live.setGraphSelection(m_changer.watched());
    m_live.initTree(m_changer.root());
    if (kind == SHOWN) {
      m_live.resize(400, 300);
      m_live.show();
    }
  }
  GraphChanger& changer() { return m_changer; }

  /// What is wrong after the step; empty when nothing is.
  std::string step(unsigned number) {
    m_random.seed(number);
    std::string wrong = use();
    remember();
    m_changer.step(number);
    if (wrong.empty()) wrong = compareAll();
    if (wrong.empty() && m_changer.isSingle() && !m_changer.hasNewRoot()) wrong = compareKept();
    return explained(wrong);
  }

  /// All nodes back in the graph.
  std::string end() {
    m_live.enableAll();
    std::string wrong = compareAll();
    if (wrong.empty() && m_ignoredRows > 0) wrong = "rows that are still ignored";
    return explained(wrong);
  }

 private:
  int below(std::size_t end) { return end > 0 ? static_cast<int>(m_random() % end) : 0; }

  /// Both trees for a message; then the fresh one goes: it does not watch, and the next change takes nodes
  /// from under it.
  std::string explained(std::string wrong) {
    if (!wrong.empty()) {
      std::vector<SoNode*> const alive = m_changer.nodes();
      wrong += "\n" + differingLines(linesOf(m_live, alive), linesOf(m_fresh, alive));
    }
    m_fresh.clear();
    m_freshIgnored.clear();
    return wrong;
  }

  std::string use() {
    if (m_rows.empty()) return std::string();
    SoTreeViewItem* const row = m_rows[below(m_rows.size())];
    switch (below(m_kind == IGNORING ? 12 : 8)) {
      case 0:
        m_live.expandItem(row);
        break;
      case 1:
        m_live.collapseItem(row);
        break;
      case 2:
        row->setBookmarked(!row->isBookmarked());
        break;
      case 3:
        m_live.setCurrentItem(row);
        break;
      case 4: {
        static constexpr int MASKS[] = {Vnt::ALL_NODE_CATEGORIES, Vnt::ALL_NODE_CATEGORIES - Vnt::Shape,
                                        Vnt::Separator | Vnt::Shape, Vnt::ALL_NODE_CATEGORIES, 0};
        m_live.setFilter(MASKS[below(std::size(MASKS))]);
        break;
      }
      case 5:
        if (below(2)) {
          m_live.showAllReferences(row);
        } else {
          m_live.removeAllReferences(row);
        }
        break;
      case 6:
        if (below(4) == 0) m_live.expandAll(m_live.firstChild());
        break;
      case 7:
        QCoreApplication::processEvents();
        break;
      case 8:
      case 9:
        m_live.changeSceneItemState(false, row);
        break;
      default:
        return enableSome();
    }
    return std::string();
  }

  /// The node comes back where its row stands.
  std::string enableSome() {
    std::vector<SoTreeViewItem*> ignored = m_rows;
    std::erase_if(ignored, [](SoTreeViewItem const* row) { return !row->isIgnored(); });
    if (ignored.empty()) return std::string();
    SoTreeViewItem* const row = ignored[below(ignored.size())];
    std::vector<SoTreeViewItem*> const before = childrenOf(row->parent());
    if (!m_live.changeSceneItemState(true, row)) return std::string();
    if (row->isIgnored() || !row->isInSceneGraph()) return "an enabled row is still ignored";
    std::vector<SoTreeViewItem*> const after = childrenOf(row->parent());
    return after == before ? std::string()
                           : "enabling moved rows: " + std::to_string(before.size()) + " before, " +
                                 std::to_string(after.size()) + " after";
  }

  void remember() {
    m_before.clear();
    m_current = m_live.currentItem();
    if (SoTreeViewItem* root = m_live.firstChild()) rememberBelow(root);
  }
  std::size_t rememberBelow(SoTreeViewItem* row) {
    std::size_t const at = m_before.size();
    m_before.push_back(
        {row, row->getNode(), row->getFieldParent(), row->isExpanded(), row->isBookmarked(), {}});
    for (SoTreeViewItem* child : childrenOf(row)) {
      std::size_t const place = rememberBelow(child);
      m_before[at].children.push_back(place);
    }
    return at;
  }

  std::string compareAll() {
    m_rows.clear();
    m_unbuiltPlaces = 0;
    m_ignoredRows = 0;
    m_outside.clear();
    m_fresh.setFilter(m_live.getFilter());
    m_fresh.initTree(m_changer.root());
    if (m_live.topLevelItemCount() != m_fresh.topLevelItemCount()) return "number of top-level rows";
    std::string wrong;
    if (m_live.firstChild()) wrong = compareBelow(m_live.firstChild(), m_fresh.firstChild(), false);
    if (!wrong.empty()) return wrong + ", " + std::to_string(m_rows.size()) + " rows from the top";
    m_changer.setOutside(m_outside);
    if (m_live.placesNotBuilt() != m_unbuiltPlaces) return "number of places that are not built";
    return compareIndex();
  }

  static int countBelow(SoTreeViewItem const* row) {
    int count = 0;
    for (SoTreeViewItem const* child : childrenOf(row)) count += 1 + countBelow(child);
    return count;
  }

  std::string compareBelow(SoTreeViewItem* live, SoTreeViewItem* fresh, bool inIgnored,
                           bool withNames = true) {
    m_rows.push_back(live);
    if (!sameNode(live, fresh) && !(inIgnored && live->isIgnored())) return "node";
    char const* const different = inIgnored ? nullptr : differenceOf(live, fresh, withNames);
    if (different) return different;
    if (live->isUnbuilt()) {
      if (live->childCount() > 0 || fresh->childCount() == 0) return "a row that is not built";
      m_unbuiltPlaces += countBelow(fresh);
      return std::string();
    }
    std::vector<SoTreeViewItem*> const children = childrenOf(live);
    std::vector<SoTreeViewItem*> wanted = childrenOf(fresh);
    auto next = wanted.begin();
    bool const anyIgnored =
        std::any_of(children.begin(), children.end(), [](SoTreeViewItem* row) { return row->isIgnored(); });
    std::string wrong;
    for (std::size_t i = 0; i < children.size() && wrong.empty(); ++i) {
      SoTreeViewItem* const child = children[i];
      if (child->isIgnored()) {
        wrong = compareIgnored(child);
        continue;
      }
      // What somebody else has brought back has its ignored row and no second one.
      while (anyIgnored && next != wanted.end() && !sameNode(child, *next) && hasIgnored(children, *next))
        ++next;
      if (next == wanted.end()) return "a row too much";
      // An ignored row takes up a number, which is part of the names of list entries.
      int const number = anyIgnored ? static_cast<int>(i) : (*next)->getSceneIndex();
      if (child->getSceneIndex() != number) wrong = "scene index";
      if (wrong.empty()) wrong = compareBelow(child, *next++, inIgnored, !anyIgnored);
    }
    while (next != wanted.end() && hasIgnored(children, *next)) ++next;
    return wrong.empty() && next != wanted.end() ? "a row too few" : wrong;
  }

  static bool hasIgnored(std::vector<SoTreeViewItem*> const& children, SoTreeViewItem const* wanted) {
    return std::any_of(children.begin(), children.end(),
                       [&](SoTreeViewItem* row) { return row->isIgnored() && sameNode(row, wanted); });
  }

  /// A row whose node is out of the graph; what stands below the node is followed all the same.
  std::string compareIgnored(SoTreeViewItem* row) {
    ++m_ignoredRows;
    if (row->isInSceneGraph() || row->getSceneIndex() != -1) return "an ignored row that is in the scene";
    m_outside.emplace_back(row->getNode());
    for (SoTreeViewItem const* child : childrenOf(row)) {
      if (!child->isDisabled()) return "an enabled row below an ignored one";
    }
    m_freshIgnored.push_back(std::make_unique<SoVantleTreeView>());
    m_freshIgnored.back()->initTree(row->getNode());
    return compareBelow(row, m_freshIgnored.back()->firstChild(), true);
  }

  /// What the index answers is what a walk over the rows finds.
  std::string compareIndex() {
    SoReferencedNodeManager const& references = *m_live.getReferencedNodeManager();
    if (references.rowCount() != static_cast<int>(m_rows.size())) return "number of rows in the index";
    for (int i = 0; i < 2 && !m_rows.empty(); ++i) {
      SoTreeViewItem* const row = m_rows[below(m_rows.size())];
      Rows walked, found;
      int inMap = 0;
      for (SoTreeViewItem* other : m_rows) {
        if (other->getNode() != row->getNode()) continue;
        walked << other;
        inMap += other->fromSubTreeField() && !other->baseKitPart();
        if (other->showRefImage() != row->showRefImage()) return "reference arrows of a node";
      }
      references.getAllItems(row->getNode(), found);
      if (found != walked) return "rows of a node in the index";
      if (references.nodeMapCount(row->getNode()) != inMap) return "rows of a node in the node map";
      found.clear();
      references.getDuplicatedItemsSet(row, found);
      if (!found.contains(row)) return "family of a row";
    }
    // Following a path builds rows, so this comes last.
    SoTreeViewItem* const row = m_rows.empty() ? nullptr : m_rows[below(m_rows.size())];
    return row && row->parent() && m_ignoredRows == 0 ? comparePlace(row) : std::string();
  }

  std::string comparePlace(SoTreeViewItem* row) {
    SoTreeViewItem* const above = row->parent();
    bool ignored = true;
    if (!above->childExist(row->getNode(), row->getFieldParent(), ignored, row->row()) || ignored)
      return "childExist";
    if (!above->isParent(row) || above->rawChild(row->row()) != row) return "parent";
    if (row->fromSubTreeField()) return std::string();
    SoRef<SoPath> const path(m_live.getPathFromItem(row));
    path->unrefNoDelete();
    if (path->getTail() != row->getNode())
      return "tail of the path of a " + row->text(0).toStdString() + " below a " +
             above->text(0).toStdString();
    return m_live.getItemFromPath(path, 0) == row ? std::string() : "row of the path";
  }

  /// Rows beside a single change are the same objects and keep what they have.
  std::string compareKept() {
    SoTreeViewItem* const root = m_live.firstChild();
    if (m_before.empty() || !root) return std::string();
    m_kept.clear();
    if (std::string const wrong = compareKeptBelow(m_before[0], root); !wrong.empty()) return wrong;
    if (m_current && m_kept.contains(m_current) && m_live.currentItem() != m_current)
      return "the current row is another";
    return std::string();
  }

  /// Which of several rows of one node stayed, nobody can tell.
  static bool standsTwice(SoTreeViewItem const* row) {
    std::vector<SoTreeViewItem*> const siblings =
        row->parent() ? childrenOf(row->parent()) : std::vector<SoTreeViewItem*>();
    return std::count_if(siblings.begin(), siblings.end(),
                         [row](SoTreeViewItem* other) { return other->getNode() == row->getNode(); }) > 1;
  }

  std::string compareKeptBelow(Before const& old, SoTreeViewItem* row) {
    if (row != old.row) return standsTwice(row) ? "" : "a row that stays was made anew";
    if (row->isBookmarked() != old.bookmarked) return "bookmark of a row that stays";
    if (row->isExpanded() != old.expanded)
      return std::string(old.expanded ? "an open row that stays was closed"
                                      : "a closed row that stays was opened") +
             ", " + std::to_string(row->childCount()) + " children";
    m_kept.insert(row);
    std::vector<SoTreeViewItem*> const children = childrenOf(row);
    auto const same = [&](std::size_t i, std::size_t k) {
      Before const& child = m_before[old.children[i]];
      return child.node == children[k]->getNode() && child.field == children[k]->getFieldParent();
    };
    std::string wrong;
    std::size_t head = 0, end = old.children.size(), newEnd = children.size();
    for (; wrong.empty() && head < end && head < newEnd && same(head, head); ++head)
      wrong = compareKeptBelow(m_before[old.children[head]], children[head]);
    for (; wrong.empty() && end > head && newEnd > head && same(end - 1, newEnd - 1); --end, --newEnd)
      wrong = compareKeptBelow(m_before[old.children[end - 1]], children[newEnd - 1]);
    return wrong;
  }

  Kind m_kind;
  GraphChanger m_changer;
  std::mt19937 m_random;
  SoVantleTreeView m_live, m_fresh;
  std::vector<std::unique_ptr<SoVantleTreeView>> m_freshIgnored;
  std::vector<SoTreeViewItem*> m_rows;  // from above to below
  std::vector<SoRef<SoNode>> m_outside; // nodes of ignored rows
  double m_unbuiltPlaces = 0;
  int m_ignoredRows = 0;
  std::vector<Before> m_before;
  SoTreeViewItem* m_current = nullptr;
  std::unordered_set<SoTreeViewItem*> m_kept;
};

struct Outcome {
  std::string wrong; // empty: nothing
  std::size_t steps = 0;
  std::vector<std::string> done;
};

Outcome play(unsigned seed, Kind kind, std::vector<unsigned> const& steps) {
  Outcome outcome;
  WatchedChanger tree(seed, kind);
  static bool const log = setting("VANTLE_RANDOM_LOG", 0) != 0;
  for (unsigned number : steps) {
    if (log) std::fprintf(stderr, "seed %u, step %u", seed, number);
    ++outcome.steps;
    outcome.wrong = tree.step(number);
    outcome.done.push_back(std::to_string(number) + ": " + tree.changer().what());
    if (log) std::fprintf(stderr, ": %s\n", tree.changer().what().c_str());
    if (!outcome.wrong.empty()) return outcome;
  }
  outcome.wrong = tree.end();
  return outcome;
}

/// The same failure with as few steps as some seconds of trying allow.
Outcome shrunk(unsigned seed, Kind kind, std::vector<unsigned> steps, Outcome failure) {
  QElapsedTimer time;
  time.start();
  steps.resize(failure.steps);
  for (std::size_t length = steps.size() / 2; length > 0; length /= 2) {
    for (std::size_t at = 0; at + length < steps.size() && time.elapsed() < 20'000;) {
      std::vector<unsigned> fewer = steps;
      fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(at),
                  fewer.begin() + static_cast<std::ptrdiff_t>(at + length));
      Outcome again = play(seed, kind, fewer);
      if (again.wrong.empty()) {
        at += length;
        continue;
      }
      fewer.resize(again.steps);
      steps = std::move(fewer);
      failure = std::move(again);
    }
  }
  return failure;
}

/// Empty when the rows were right all the time.
std::string playSeed(unsigned seed, unsigned count) {
  std::vector<unsigned> steps(count);
  for (unsigned i = 0; i < count; ++i) steps[i] = i;
  Kind const kind = static_cast<Kind>(seed % KINDS);
  Outcome outcome = play(seed, kind, steps);
  if (outcome.wrong.empty()) return std::string();
  std::string message = "seed " + std::to_string(seed) + ", step " +
                        (outcome.done.empty() ? "" : outcome.done.back()) + ": " + outcome.wrong +
                        "with fewer steps:\n";
  outcome = shrunk(seed, kind, steps, outcome);
  std::size_t const from = outcome.done.size() - std::min<std::size_t>(outcome.done.size(), 40);
  for (std::size_t i = from; i < outcome.done.size(); ++i) message += "  " + outcome.done[i] + "\n";
  return message + outcome.wrong;
}

TEST_F(EqualityTest, RowsAreThoseOfAFreshTreeAfterEveryChange) {
  unsigned const only = static_cast<unsigned>(setting("VANTLE_RANDOM_SEED", 0));
  unsigned const count = static_cast<unsigned>(setting("VANTLE_RANDOM_STEPS", 2'600));
  for (unsigned seed = only ? only : 1; seed <= (only ? only : 8); ++seed)
    ASSERT_EQ(playSeed(seed, count), "");
}

SessionChild const underKeys("equality under keys", [] {
  int count = 1;
  char name[] = "vantle";
  char* arguments[] = {name, nullptr};
  QApplication application(count, arguments);
  for (unsigned seed : {12u, 14u}) {
    std::string const wrong = playSeed(seed, 800);
    std::fputs(wrong.c_str(), stderr);
    CHILD_EXPECT(wrong.empty());
  }
  return 0;
});

TEST(EqualityUnderKeys, HoldsToo) {
  for (char const* key : {"VANTLE_SHOW_INTERNAL_CHILDREN", "KSRU_LAUNCH_VANTLE"}) {
    qputenv(key, "1");
    EXPECT_EQ(underKeys.run(), "") << key;
    qunsetenv(key);
  }
}

} // namespace
