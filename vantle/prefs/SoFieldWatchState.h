#pragma once

#include "vantle/prefs/SoVantleState.h"

class QTreeWidgetItem;
class SoFieldWatch;

/// The shared actions work on the field watch.
class SoFieldWatchState : public SoVantleState {
  Q_OBJECT
 public:
  explicit SoFieldWatchState(SoFieldWatch* watch);
  ~SoFieldWatchState() override;

  void activate() override;
  void desactivate() override;
  void createContextPopupMenu(QContextMenuEvent* event) override;

 public Q_SLOTS:
  void updateItemFieldWatchAction(QTreeWidgetItem* current, QTreeWidgetItem* previous);
  void listClearedSlot();

 private:
  SoFieldWatch* m_watch;
};
