#include <vector>

#include "kestrava/nodes/SoNode.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// What goes through the rows one after the other: filter, bookmarks.

namespace {

/// Up to here the view hides every filtered row at once. Hiding costs memory a row, so of larger trees only
/// rows that stand below open ones are hidden, the others when theirs is opened.
constexpr int SMALL_TREE = 20'000;

} // namespace

SoTreeViewItem* SoVantleTreeView::itemBelowInTree(SoTreeViewItem* item) {
  if (SoTreeViewItem* child = item->firstChild()) return child;
  for (; item; item = item->parent()) {
    if (SoTreeViewItem* next = item->nextSibling()) return next;
  }
  return nullptr;
}

SoTreeViewItem* SoVantleTreeView::itemAboveInTree(SoTreeViewItem* item) {
  SoTreeViewItem* above = item->previousSibling();
  if (!above) return item->parent();
  while (int const count = above->childCount()) above = above->rawChild(count - 1);
  return above;
}

SoTreeViewItem* SoVantleTreeView::lastItem() const {
  SoTreeViewItem* item = SoTreeViewItem::cast(topLevelItem(topLevelItemCount() - 1));
  while (item && item->childCount() > 0) item = item->rawChild(item->childCount() - 1);
  return item;
}

void SoVantleTreeView::setFilter(int mask) {
  if (mask == m_filter) return;
  m_filter = mask;
  SoTreeViewItem const* const current = currentItem();
  bool const inSight = current && viewport()->rect().intersects(visualItemRect(current));
  filterItems();
  if (inSight && !visualItemRect(current).isEmpty()) scrollToItem(current);
}

void SoVantleTreeView::filterItems() {
  m_anyFiltered = true;
  for (int i = 0; i < topLevelItemCount(); ++i) {
    SoTreeViewItem* const top = SoTreeViewItem::cast(topLevelItem(i));
    if (!top) break;
    markFiltered(top);
  }
  m_anyFiltered = m_filter != Vnt::ALL_NODE_CATEGORIES;
}

/// Says of a row and all below it what the filter wants, and hides what the view has to know.
void SoVantleTreeView::markFiltered(SoTreeViewItem* top) {
  if (!m_anyFiltered) return;
  bool const all = m_references->rowCount() <= SMALL_TREE;
  bool hiddenChanges = false;
  std::vector<SoTreeViewItem*> rows{top};
  while (!rows.empty()) {
    SoTreeViewItem* const row = rows.back();
    rows.pop_back();
    int const category = VntNodeInfo::category(row->m_node);
    if (category != 0) row->m_filtered = !(category & m_filter);
    hiddenChanges |= row->m_hidden != row->m_filtered;
    for (int i = row->childCount(); i-- > 0;) rows.push_back(row->rawChild(i));
  }
  if (!hiddenChanges) return;

  QModelIndex const above = top->parent() ? indexFromItem(top->parent()) : QModelIndex();
  hideIn(above, top->row(), top->row() + 1, all);
}

/// Hides or shows rows of a parent in the view, and what stands below those that are open (or below all of
/// them).
void SoVantleTreeView::hideIn(QModelIndex const& parent, int first, int end, bool all) {
  struct Run {
    QModelIndex parent;
    int first, end;
  };
  std::vector<Run> runs{{parent, first, end}};
  while (!runs.empty()) {
    Run const run = runs.back();
    runs.pop_back();
    for (int i = run.first; i < run.end; ++i) {
      QModelIndex const index = model()->index(i, 0, run.parent);
      auto* const row = SoTreeViewItem::cast(itemFromIndex(index));
      if (!row) break;
      if (row->m_hidden != row->m_filtered) {
        setRowHidden(i, run.parent, row->m_filtered);
        row->m_hidden = row->m_filtered;
        m_everHidden |= row->m_hidden;
      }
      if (int const count = row->childCount(); count > 0 && (all || isExpanded(index)))
        runs.push_back({index, 0, count});
    }
  }
}

/// For rows that have come back into the view, which knows nothing of them any more.
void SoVantleTreeView::hideAnew(SoTreeViewItem* top) {
  if (!m_anyFiltered && !m_everHidden) return;
  std::vector<SoTreeViewItem*> rows{top};
  while (!rows.empty()) {
    SoTreeViewItem* const row = rows.back();
    rows.pop_back();
    row->m_hidden = false;
    for (int i = row->childCount(); i-- > 0;) rows.push_back(row->rawChild(i));
  }
  markFiltered(top);
}

void SoVantleTreeView::applyFilter(QModelIndex const& parent) {
  if (m_anyFiltered || m_everHidden) hideIn(parent, 0, model()->rowCount(parent), false);
}

SoTreeViewItem* SoVantleTreeView::nextBookmark() const {
  SoTreeViewItem* const current = currentItem();
  SoTreeViewItem* const start = current ? itemBelowInTree(current) : nullptr;
  return findBookmark(start ? start : firstChild(), false);
}

SoTreeViewItem* SoVantleTreeView::previousBookmark() const {
  SoTreeViewItem* const current = currentItem();
  SoTreeViewItem* const start = current ? itemAboveInTree(current) : nullptr;
  return findBookmark(start ? start : lastItem(), true);
}

/// One row on, around the end.
void SoVantleTreeView::stepAround(SoTreeViewItem*& item, bool backwards) const {
  item = backwards ? itemAboveInTree(item) : itemBelowInTree(item);
  if (!item) item = backwards ? lastItem() : firstChild();
}

SoTreeViewItem* SoVantleTreeView::findBookmark(SoTreeViewItem* start, bool backwards) const {
  if (!start) return nullptr;
  SoTreeViewItem* item = start;
  do {
    if (item->isBookmarked()) return item;
    stepAround(item, backwards);
  } while (item != start);
  return nullptr;
}

void SoVantleTreeView::clearBookmark() {
  for (SoTreeViewItem* item = firstChild(); item; item = itemBelowInTree(item)) item->setBookmarked(false);
}
