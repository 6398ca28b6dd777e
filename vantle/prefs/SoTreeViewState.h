#pragma once

#include "vantle/prefs/SoVantleState.h"

class QTreeWidgetItem;
class SoVantleTreeView;

/// The shared actions work on the scene tree.
class SoTreeViewState : public SoVantleState {
  Q_OBJECT
 public:
  explicit SoTreeViewState(SoVantleTreeView* view);
  ~SoTreeViewState() override;

  void activate() override;
  void desactivate() override;
  void createContextPopupMenu(QContextMenuEvent* event) override;

 public Q_SLOTS:
  void updateItemTreeViewAction(QTreeWidgetItem* current, QTreeWidgetItem* previous);
  /// The current row is another than it was.
  void updateActions();

 private:
  SoVantleTreeView* m_view;
};
