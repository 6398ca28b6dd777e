#pragma once

#include <vector>

#include "kestrava/nodes/SoNode.h"

class SoTreeViewItem;

/// Finds all rows of a node. The rows of one node form a ring through the rows themselves; a table of one
/// pointer a node leads to the ring. Adding and removing a row costs the same however many there are.
class SoNodeRowIndex {
 public:
  void add(SoTreeViewItem* row);
  /// Does nothing for a row that is not there. Looks at no node.
  void remove(SoTreeViewItem* row);
  void clear();
  bool contains(SoTreeViewItem const* row) const;
  /// Some row of a node, null when it has none.
  SoTreeViewItem* find(SoNode const* node) const;
  /// All rows of a node, in no order.
  std::vector<SoTreeViewItem*> rows(SoNode const* node) const;
  int rowCount() const { return m_rowCount; }
  int nodeCount() const { return static_cast<int>(m_nodes); }

 private:
  std::size_t slotOf(SoNode const* node) const;
  void grow();

  std::vector<SoTreeViewItem*> m_table; // open addressing, a power of two
  std::size_t m_nodes = 0;
  int m_rowCount = 0;
};
