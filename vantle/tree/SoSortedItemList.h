#pragma once

#include <QList>
#include <vector>

class SoTreeViewItem;

/// One entry: rows compare by their order in the scene, equality is identity.
struct SoSortedItemListElement {
  SoTreeViewItem* row;
  friend bool operator==(SoSortedItemListElement a, SoSortedItemListElement b) { return a.row == b.row; }
  friend bool operator!=(SoSortedItemListElement a, SoSortedItemListElement b) { return a.row != b.row; }
  bool operator<(SoSortedItemListElement const& other) const;
};

/// Rows that are sorted, and freed from duplicates, when somebody asks for them.
class SoSortedItemList {
 public:
  void addRef(SoTreeViewItem* row);
  /// The same for a row that is not in the list.
  void addNew(SoTreeViewItem* row);
  void removeRef(SoTreeViewItem* row);
  void sortList();
  /// In row order, each row once.
  void toList(QList<SoTreeViewItem*>& list);
  bool isEmpty() const { return m_elements.empty(); }
  int count() const { return static_cast<int>(m_elements.size()); }

 private:
  std::vector<SoSortedItemListElement> m_elements;
  bool m_sorted = true;
  bool m_mayRepeat = false;
};
