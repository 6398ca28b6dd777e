#pragma once

#include <QMenu>
#include <vector>

#include "kestrava/base/SoPath.h"

class SoTreeViewItem;
class SoVantleTreeView;

/// One place that lies under the pointer.
struct SoPickedPlace {
  SoRef<SoPath> path;  ///< headed at the tree's selection node; ends at the deepest node that has a row
  SoTreeViewItem* row; ///< of that node, now; it may go any time later
  float distance;      ///< from the eye
};

/// All that lies under the pointer, nearest first: an entry that the pointer is over is marked in the 3D
/// view, one that is chosen becomes the current row. Closed without a choice, it leaves the view marked as it
/// was. Destroys itself when it closes.
class SoPickMenu : public QMenu {
  Q_OBJECT
 public:
  static constexpr int MAX_ENTRIES = 30;

  /// The tree's.
  SoPickMenu(SoVantleTreeView* tree, std::vector<SoPickedPlace> const& places);
  ~SoPickMenu() override;
  /// Opens it beside the pointer.
  void popUp();

 private:
  void addPlaces(std::vector<SoPickedPlace> const& places);
  SoPath* pathOf(QAction const* entry) const;
  void mark(QAction* entry);
  void unmark();
  void choose(QAction* entry);
  void takeInput();

  SoVantleTreeView* m_tree;
  std::vector<SoRef<SoPath>> m_paths; // of the entries
  std::vector<SoRef<SoPath>> m_markedBefore;
  SoPath* m_marked = nullptr; // one of the paths
};
