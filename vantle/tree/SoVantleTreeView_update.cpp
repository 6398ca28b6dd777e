#include <algorithm>
#include <map>
#include <vector>

#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoIgnoredNodes.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// Bringing the rows below a row in line with the scene graph.

namespace {

/// Of a sequence of numbers the places of a longest part that rises; numbers below 0 are passed over.
std::vector<std::size_t> longestRise(std::vector<int> const& numbers) {
  std::vector<std::size_t> ends; // by length: where the lowest such part ends
  std::vector<std::size_t> before(numbers.size(), SIZE_MAX);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] < 0) continue;
    auto const at = std::lower_bound(ends.begin(), ends.end(), numbers[i],
                                     [&](std::size_t place, int number) { return numbers[place] < number; });
    if (at != ends.begin()) before[i] = *std::prev(at);
    if (at == ends.end()) {
      ends.push_back(i);
    } else {
      *at = i;
    }
  }
  std::vector<std::size_t> places;
  for (std::size_t i = ends.empty() ? SIZE_MAX : ends.back(); i != SIZE_MAX; i = before[i])
    places.push_back(i);
  std::reverse(places.begin(), places.end());
  return places;
}

} // namespace

bool SoVantleTreeView::isRowOf(SoTreeViewItem const* row, ChildNode const& child) {
  return row->m_node == child.node && row->m_field == child.field;
}

/// Takes out what has an ignored row already: a node that comes back while its row is ignored gets no second
/// one.
void SoVantleTreeView::dropIgnored(std::vector<SoTreeViewItem*> const& ignored,
                                   std::vector<SoTreeViewItem*> const& rows, std::vector<ChildNode>& wanted) {
  for (SoTreeViewItem const* row : ignored) {
    auto const same = [row](ChildNode const& child) { return isRowOf(row, child); };
    auto const shows = [row](SoTreeViewItem const* other) {
      return other->m_node == row->m_node && other->m_field == row->m_field;
    };
    auto const surplus =
        std::count_if(wanted.begin(), wanted.end(), same) - std::count_if(rows.begin(), rows.end(), shows);
    if (surplus <= 0) continue;
    // Of several equal ones the one that has no row where it stands.
    auto found = wanted.begin();
    auto other = rows.begin();
    while (found != wanted.end() && !(same(*found) && (other == rows.end() || !isRowOf(*other, *found)))) {
      if (other != rows.end() && isRowOf(*other, *found)) ++other;
      ++found;
    }
    if (found == wanted.end()) found = std::prev(std::find_if(wanted.rbegin(), wanted.rend(), same).base());
    wanted.erase(found);
  }
}

bool SoVantleTreeView::updateItemChildren(SoTreeViewItem* item) {
  std::vector<ChildNode> wanted;
  childrenOf(item->m_node, wanted);
  if (item->m_unbuilt) {
    if (wanted.empty()) setUnbuilt(item, false);
    return wanted.empty();
  }
  if (SoTreeViewItem* const current = currentBelow(item); current && !current->m_ignored) {
    auto const isWanted = [&](SoTreeViewItem const* row) {
      return std::any_of(wanted.begin(), wanted.end(),
                         [row](ChildNode const& child) { return isRowOf(row, child); });
    };
    if (!isWanted(current)) {
      int first = current->row(), end = first + 1;
      while (item->rawChild(end) && !isWanted(item->rawChild(end))) ++end;
      while (first > 0 && !isWanted(item->rawChild(first - 1))) --first;
      if (!leaveCurrent(item, first, end - first)) return true;
      wanted.clear();
      childrenOf(item->m_node, wanted);
    }
  }
  std::vector<SoTreeViewItem*> rows, ignored;
  for (int i = 0, n = item->childCount(); i < n; ++i) {
    SoTreeViewItem* const row = item->rawChild(i);
    (row->m_inSceneGraph && !row->m_ignored ? rows : ignored).push_back(row);
  }
  if (!ignored.empty()) dropIgnored(ignored, rows, wanted);

  // What is the same at both ends stays.
  std::size_t head = 0;
  while (head < rows.size() && head < wanted.size() && isRowOf(rows[head], wanted[head])) ++head;
  std::size_t oldEnd = rows.size(), newEnd = wanted.size();
  while (oldEnd > head && newEnd > head && isRowOf(rows[oldEnd - 1], wanted[newEnd - 1])) --oldEnd, --newEnd;
  if (head == oldEnd && head == newEnd) return false;

  if (wanted.empty() && ignored.empty()) {
    deleteRows(item, 0, item->childCount());
    return true;
  }
  SoTreeViewItem* const before = head > 0 ? rows[head - 1] : nullptr;
  arrange(item, before, {rows.begin() + head, rows.begin() + oldEnd},
          {wanted.begin() + head, wanted.begin() + newEnd});
  return true;
}

/// Makes the given neighbouring children of a row, which stand behind another child of it, those that are
/// wanted. Rows that stay in order are not touched; those that change places take along what they have.
void SoVantleTreeView::arrange(SoTreeViewItem* item, SoTreeViewItem* before,
                               std::vector<SoTreeViewItem*> const& rows,
                               std::vector<ChildNode> const& wanted) {
  // Which wanted one each row is to be, -1 for none.
  std::vector<int> target(rows.size(), -1);
  std::multimap<std::pair<SoNode*, SoField*>, int> open;
  for (std::size_t i = 0; i < wanted.size() && !rows.empty(); ++i)
    open.emplace(std::pair(wanted[i].node, wanted[i].field), static_cast<int>(i));
  std::vector<SoTreeViewItem*> result(wanted.size(), nullptr);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    auto const found = open.find({rows[i]->m_node, rows[i]->m_field});
    if (found == open.end()) continue;
    target[i] = found->second;
    result[found->second] = rows[i];
    open.erase(found);
  }
  std::vector<bool> stays(wanted.size(), false);
  for (std::size_t i : longestRise(target)) stays[target[i]] = true;

  NoScroll const still(this);
  MovedRows moved(this);
  for (std::size_t i = rows.size(); i-- > 0;) {
    if (target[i] < 0) {
      delete rows[i];
    } else if (!stays[target[i]]) {
      moved.take(rows[i]);
    }
  }

  int position = before ? before->row() + 1 : 0;
  QList<QTreeWidgetItem*> run;
  std::vector<SoTreeViewItem*> added;
  auto const insertRun = [&] {
    if (run.isEmpty()) return;
    item->insertChildren(position, run);
    position += static_cast<int>(run.size());
    run.clear();
  };
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (stays[i]) {
      insertRun();
      // Ignored rows stand between.
      while (item->rawChild(position) != result[i]) ++position;
      ++position;
      continue;
    }
    SoTreeViewItem* row = result[i];
    if (!row)
      added.push_back(
          row = makeRows(wanted[i].node, item, wanted[i].field, position + static_cast<int>(run.size())));
    run.append(row);
  }
  insertRun();
  item->sceneIndicesChanged();
  for (SoTreeViewItem* row : added) {
    if (item->m_ignored) row->setDisabled(true);
    markFiltered(row);
  }
  moved.settle();
}

/// The child of a row that is the current row or stands above it; null when that is elsewhere.
SoTreeViewItem* SoVantleTreeView::currentBelow(SoTreeViewItem const* item) const {
  SoTreeViewItem* row = currentItem();
  while (row && row->parent() != item) row = row->parent();
  return row;
}

/// Before rows go that contain the current one, a neighbour is made current: who hears of that may change the
/// graph, which must not happen in the midst of a removal. False: it has been changed, and rows are gone.
bool SoVantleTreeView::leaveCurrent(SoTreeViewItem* parent, int first, int count) {
  SoTreeViewItem* const row = currentBelow(parent);
  if (!row) return true;
  int const at = row->row();
  if (at < first || at >= first + count) return true;
  SoTreeViewItem* next = parent->rawChild(first + count);
  if (!next && first > 0) next = parent->rawChild(first - 1);
  unsigned const removals = m_references->removals();
  NoScroll const still(this);
  setCurrentItem(next ? next : parent);
  return removals == m_references->removals();
}

// Rows that change places.

namespace {

bool isWithin(SoTreeViewItem const* row, SoTreeViewItem const* top) {
  while (row && row != top) row = row->parent();
  return row;
}

} // namespace

void SoVantleTreeView::MovedRows::take(SoTreeViewItem* row) {
  SoTreeViewItem* const current = m_view->currentItem();
  if (!m_current && isWithin(current, row)) m_current = current;
  // What is open below closed rows is not looked for: that would be a walk over all of them.
  std::vector<SoTreeViewItem*> open{row};
  while (!open.empty()) {
    SoTreeViewItem* const next = open.back();
    open.pop_back();
    if (!next->isExpanded()) continue;
    m_expanded.push_back(next);
    for (int i = next->childCount(); i-- > 0;) open.push_back(next->rawChild(i));
  }
  m_rows.push_back(row);
  // Until it is back nobody hears of another current row.
  QSignalBlocker const quiet(m_view);
  row->parent()->QTreeWidgetItem::takeChild(row->row());
}

void SoVantleTreeView::MovedRows::settle() {
  if (m_rows.empty()) return;
  m_view->scheduleDelayedItemsLayout();
  bool const batch = std::exchange(m_view->m_batch, true);
  for (SoTreeViewItem* row : m_expanded) row->setExpanded(true);
  m_view->m_batch = batch;
  for (SoTreeViewItem* row : m_rows) m_view->hideAnew(row);
  if (!m_current) return;
  QSignalBlocker const quiet(m_view);
  m_view->setCurrentItem(m_current);
}
