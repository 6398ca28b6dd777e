#include "vantle/tree/SoSortedItemList.h"

#include <algorithm>

#include "vantle/tree/SoTreeViewItem.h"

bool SoSortedItemListElement::operator<(SoSortedItemListElement const& other) const {
  return *row < *other.row;
}

void SoSortedItemList::addRef(SoTreeViewItem* row) {
  addNew(row);
  m_mayRepeat = !m_sorted;
}

void SoSortedItemList::addNew(SoTreeViewItem* row) {
  m_elements.push_back({row});
  m_sorted = m_elements.size() == 1;
}

void SoSortedItemList::removeRef(SoTreeViewItem* row) {
  // From the end, where the rows of a subtree stand when it goes; equal entries count as one.
  SoSortedItemListElement const element{row};
  auto const last = std::find(m_elements.rbegin(), m_elements.rend(), element);
  if (last == m_elements.rend()) return;
  m_elements.erase(std::next(last).base());
  if (m_mayRepeat) std::erase(m_elements, element);
}

void SoSortedItemList::sortList() {
  if (m_sorted) return;
  // The rows' own order says nothing about rows of different depths; from above to below agrees with it where
  // it does.
  std::sort(m_elements.begin(), m_elements.end(),
            [](auto const& a, auto const& b) { return SoTreeViewItem::isAbove(a.row, b.row); });
  m_elements.erase(std::unique(m_elements.begin(), m_elements.end()), m_elements.end());
  m_sorted = true;
  m_mayRepeat = false;
}

void SoSortedItemList::toList(QList<SoTreeViewItem*>& list) {
  sortList();
  for (SoSortedItemListElement const& element : m_elements) list.append(element.row);
}
