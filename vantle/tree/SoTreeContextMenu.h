#pragma once

#include <QMenu>
#include <QSet>

#include "kestrava/base/SoType.h"

class SoTreeViewItem;
class SoVantleTreeView;

/// The menu of a row of the scene tree. Its entries are made once and keep their order; which of them it shows
/// follows the rows that it was filled for, and so do the menus of plug-ins at its end.
class SoTreeContextMenu : public QMenu {
  Q_OBJECT
 public:
  /// The tree's.
  explicit SoTreeContextMenu(SoVantleTreeView* tree);

  /// Without a session it stays empty.
  void fill(SoTreeViewItem const* row);

 private:
  void makeEntries();
  QAction* addEntry(QAction* action);
  QAction* addSeparatorEntry();
  void show(std::initializer_list<QAction*> entries) {
    for (QAction* entry : entries) m_shown.insert(entry);
  }
  void addPlugInMenus(SoType const& type);

  SoVantleTreeView* m_tree;
  // What is not to be seen is taken out of the menu and not hidden: the main frame's actions stand in other menus
  // and tool bars too.
  QList<QAction*> m_entries;
  QSet<QAction*> m_shown;
  QSet<QAction*> m_forEachRow;
  QAction *m_ignoreSeparator = nullptr, *m_ignore = nullptr;
  QAction *m_referencesSeparator = nullptr, *m_showReferences = nullptr, *m_hideReferences = nullptr;
};
