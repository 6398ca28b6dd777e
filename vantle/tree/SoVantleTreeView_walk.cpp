#include <QHash>
#include <vector>

#include "kestrava/nodes/SoNode.h"
#include "vnt/QtText.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// What goes through the rows one after the other: filter, bookmarks, search.

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
  filterItems();
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

SoTreeViewItem* SoVantleTreeView::find(int mode, QString const& text, int flags) const {
  bool const backwards = flags & FIND_BACKWARD;
  bool const exact = flags & FIND_EXACT;
  if (!firstChild() || (text.isEmpty() && !exact)) return nullptr;
  Qt::CaseSensitivity const letters = flags & FIND_CASE_SENSITIVE ? Qt::CaseSensitive : Qt::CaseInsensitive;
  QString const wanted = letters == Qt::CaseSensitive ? text : text.toLower();
  auto const fits = [&](QString const& value) {
    QString const own = letters == Qt::CaseSensitive ? value : value.toLower();
    return exact ? own == wanted : own.contains(wanted);
  };
  // Many rows have the same few texts, and equal names are one object.
  QHash<void const*, bool> known;
  auto const nameFits = [&](SbName const& name) {
    auto const found = known.constFind(name.c_str());
    if (found != known.constEnd()) return found.value();
    return known.insert(name.c_str(), fits(toQString(name.toString()))).value();
  };
  auto const matches = [&](SoTreeViewItem const* item) {
    SoNode const* const node = item->m_node;
    switch (mode) {
      case FIND_TYPE:
        return nameFits(node->getTypeId().getName());
      case FIND_NAME:
        return nameFits(item->getNodeName());
      case FIND_ADDRESS:
        return fits(QStringLiteral("0x") + QString::number(reinterpret_cast<quintptr>(node), 16));
      case FIND_ID:
        return fits(QString::number(node->getNodeId()));
      default:
        return false;
    }
  };

  // The row after the current one first, that one last.
  SoTreeViewItem* item = currentItem();
  if (item) {
    stepAround(item, backwards);
  } else {
    item = backwards ? lastItem() : firstChild();
  }
  SoTreeViewItem* const start = item;
  do {
    if (matches(item)) return item;
    stepAround(item, backwards);
  } while (item != start);
  return nullptr;
}
