#pragma once

#include <QObject>
#include <QTimer>
#include <cstdint>

#include "kestrava/sensors/SoNodeSensor.h"
#include "vantle/tree/SoIgnoredNodes.h"

class SoField;
class SoNode;
class SoPath;
class SoReferencedNodeManager;
class SoTreeViewItem;
class SoVantleTreeView;

/// Keeps the rows in step with the scene graph: changes exactly the rows that a change concerns, at every
/// place where they are shown. Works inside the change, so the graph is to be changed on the GUI thread.
class SoGraphTopologyManager : public QObject {
  Q_OBJECT
 public:
  explicit SoGraphTopologyManager(SoVantleTreeView* view);
  ~SoGraphTopologyManager() override;

  /// The node above the scene; null watches nothing.
  void setRootNode(SoNode* root);
  SoNode* getRootNode() const { return m_sensor.getAttachedNode(); }
  /// In milliseconds. Without effect: the rows follow at once.
  void setIntervalTimeRefreshing(int milliseconds) { m_interval = milliseconds; }

  /// The children of a file or inline were loaded anew.
  void updateExternalSceneTopology(SoNode* node);
  // For nodes that are values of a field.
  void insertItemsFromField(SoNode* child, SoNode* parent, int index, SoField* field);
  void removeItemsFromField(SoNode* parent, SoNode* child, int index);

  void groupAddChild(SoNode* group, SoNode* child, int index, SoPath* path);
  void groupInsertChild(SoNode* group, SoNode* child, int index, SoPath* path);
  void groupRemoveChild(SoNode* group, int index, SoPath* path);
  void groupRemoveAllChildren(SoNode* group, SoPath* path);

  static void graphTopologyChangedCB(void* manager, SoSensor* sensor);
  /// Brings the rows below all rows of a node in line with the graph.
  void redrawItemChildrens(SoNode* node);
  SoIgnoredNodes& ignoredNodes() { return m_ignored; }

 public Q_SLOTS:
  void updateTreeViewDisplay();

 private:
  bool isScene(SoNode* node) const;
  void showScene(SoNode* scene);
  void replaceChild(SoNode* group, SoNode* child, SoPath* path);
  void unspecified(SoNode* node, SoField* field, SoPath* path);
  bool insertMissing(SoNode* group, SoPath* path);
  void setItemsToTree(SoNode* parent, SoNode* child, int index);
  void takeItemsFromTree(SoNode* parent, int index);
  static void nodeIsDestroyed(void* manager, SoNode const* node);
  void redrawAllBelow(SoNode* node);
  template <typename Change>
  bool forRowsOf(SoNode* node, Change change);
  void refresh(SoPath* path);

  QTimer* m_timer; // child of this
  SoNodeSensor m_sensor;
  SoVantleTreeView* m_view;
  SoReferencedNodeManager* m_references;
  int m_interval = 0;
  unsigned m_changes = 0;
  std::uint64_t m_silentChanges = 0; // those that the rows are known to show
  SoIgnoredNodes m_ignored;
};
