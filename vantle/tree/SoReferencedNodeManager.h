#pragma once

#include <QList>
#include <QMultiHash>
#include <QString>
#include <memory>
#include <vector>

#include "vantle/tree/SoNodeRowIndex.h"

class SoBaseKit;
class SoNode;
class SoSearchAction;
class SoSortedItemList;
class SoTreeViewItem;
class SoVantleTreeView;

/// Knows every row of each node, and walks through the rows of a node that stands at several places.
class SoReferencedNodeManager {
 public:
  SoReferencedNodeManager(SoVantleTreeView* view, SoNode* root);
  ~SoReferencedNodeManager();
  SoReferencedNodeManager(SoReferencedNodeManager const&) = delete;
  SoReferencedNodeManager& operator=(SoReferencedNodeManager const&) = delete;

  void setRootNode(SoNode* root) { m_root = root; }

  void addItem(SoTreeViewItem* item);
  /// Forgets a row and every row below it, those first.
  void removeItem(SoTreeViewItem* item);

  /// The parts of a kit are others now: gives the rows of its parts, and those that were, their part names.
  void renameParts(SoBaseKit* kit);

  /// Collects the rows of the item's node for walking; nothing for a node that is referenced once.
  void setReferencedList(SoTreeViewItem* item);
  void removeReferencedList(SoTreeViewItem* item);
  /// The rows of the item's node as they are now, in row order; null when they were not collected. The
  /// manager's, until the next call.
  QList<SoTreeViewItem*>* getAllReferencedItems(SoTreeViewItem* item) const;
  /// The next (previous) row of the node that is in view and scene, around the end; null without a list.
  SoTreeViewItem* getNextRefItem(SoTreeViewItem* item) const;
  SoTreeViewItem* getPreviousRefItem(SoTreeViewItem* item) const;

  /// By searching the scene graph below the root, kits included.
  void searchAllReferencedItems(SoNode* node, QList<SoTreeViewItem*>& list);
  /// All rows of a node in row order, from the index.
  void getAllItems(SoNode* node, QList<SoTreeViewItem*>& list) const;
  /// The rows of a node, one list (the caller's) for each slot of each parent node.
  void searchItemFamilies(SoNode* node, QList<QList<SoTreeViewItem*>*>& families) const;
  /// The rows of a node that show one slot of one parent node.
  void searchItemFamily(SoNode* node, SoNode* parent, int sceneIndex, QList<SoTreeViewItem*>& rows) const;
  void getDuplicatedItemsSets(SoTreeViewItem* item, QList<QList<SoTreeViewItem*>*>& families) const;
  void getDuplicatedItemsSets(SoNode* node, QList<QList<SoTreeViewItem*>*>& families) const;
  void getDuplicatedItemsSet(SoTreeViewItem* item, QList<SoTreeViewItem*>& rows) const;
  void getDuplicatedItemsSet(SoNode* node, SoNode* parent, int sceneIndex,
                             QList<SoTreeViewItem*>& rows) const;
  /// "1000+2": parent's address in decimal, scene index.
  static QString familyKey(SoTreeViewItem const* item);

  /// Some row of a node, null when it has none.
  SoTreeViewItem* findItem(SoNode const* node) const { return m_index.find(node); }
  /// All rows of a node, in no order.
  std::vector<SoTreeViewItem*> rowsOf(SoNode const* node) const { return m_index.rows(node); }
  int rowCount() const { return m_index.rowCount(); }
  /// Different nodes that have rows.
  int nodeCount() const { return m_index.nodeCount(); }

  /// Grows with every row that goes: a pointer to a row is good as long as it stays the same.
  unsigned removals() const { return m_removals; }

  /// Rows of the node map; 0 for a node that is not in it.
  int nodeMapCount(SoNode const* node) const;
  /// Also empties the index.
  void clearNodeMap();
  void reset();

 private:
  static bool belongsInNodeMap(SoTreeViewItem const* item);
  void removeSingleItem(SoTreeViewItem* item);
  void addToNodeMap(SoTreeViewItem* item);
  void removeFromNodeMap(SoTreeViewItem* item);
  void removeSubTreeFromMap(SoTreeViewItem* item);
  SoTreeViewItem* step(SoTreeViewItem* item, int direction) const;

  QMultiHash<QString, QList<SoTreeViewItem*>*> m_referenced;
  QMultiHash<QString, SoSortedItemList*> m_nodeMap;
  SoNode* m_root;
  std::unique_ptr<SoSearchAction> m_search;
  SoVantleTreeView* m_view;
  SoNodeRowIndex m_index;
  unsigned m_removals = 0;
};
