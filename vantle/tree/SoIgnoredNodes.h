#pragma once

#include <memory>
#include <vector>

#include "kestrava/base/SoBase.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/sensors/SoNodeSensor.h"

class SoField;
class SoGraphTopologyManager;
class SoReferencedNodeManager;
class SoTreeViewItem;

/// The nodes that the user has taken out of the graph while their rows stay. Each is held, and watched as the
/// graph is, until it is put back or the node that it belongs below is gone.
class SoIgnoredNodes {
 public:
  struct Entry {
    SoNode* parent;
    SoField* field; ///< of the parent; null for the child of a group
    SoRef<SoNode> node;
    int place; ///< of its row among all children of the parent's row, when that was last looked at
    SoNodeSensor below, parentSensor;
  };

  SoIgnoredNodes(SoGraphTopologyManager* manager, SoReferencedNodeManager* references)
      : m_manager(manager), m_references(references) {}

  bool isEmpty() const { return m_entries.empty(); }
  /// For a row that is about to be ignored.
  void add(SoTreeViewItem const* row);
  /// Null for a row that is not ignored.
  Entry* find(SoTreeViewItem const* row) const;
  void remove(Entry* entry);
  /// The ones below a node, from above to below.
  std::vector<Entry*> below(SoNode const* parent) const;
  std::vector<Entry*> all() const;

  /// Takes the places from the rows, before these go.
  void rememberPlace(SoTreeViewItem const* row);
  void rememberPlaces();

 private:
  static void parentDies(void* nodes, SoSensor* sensor);
  void rememberPlacesBelow(SoNode const* parent);

  SoGraphTopologyManager* m_manager;
  SoReferencedNodeManager* m_references;
  std::vector<std::unique_ptr<Entry>> m_entries;
};
