#pragma once

#include <QList>
#include <QMultiHash>
#include <QObject>
#include <QPoint>
#include <QString>
#include <memory>

class QTreeWidgetItem;
class SoError;
class SoFieldContainer;
class SoFieldItem;
class SoNode;
class SoTreeViewItem;
class SoVantleEdition;
class SoVantleMainFrame;
class SoVantleTreeView;
class VntCommand;

/// Where every user operation arrives: forwards it to the object that does the work, and keeps the undo
/// history.
class SoCommandManager : public QObject {
  Q_OBJECT
 public:
  SoCommandManager();
  /// The commands still in the history stay allocated: plug-ins may hold them.
  ~SoCommandManager() override;

  void init();
  /// Takes panel and tree from the viewer. `attached`: to a host.
  void initCommandManager(bool attached);

  /// True once a command was pushed since the last clear; undoing does not take it back.
  bool isChanged() const { return m_changed; }
  /// Empties the history, at once or, from inside a command, when the outermost operation has ended.
  void clearUndoCommands();
  void processClearUndoCommand();
  /// Saves the settings and asks for a deferred stop.
  void exitApp();
  /// Keeps the text of the first error; `manager` is the command manager. For embeddings that read
  /// themselves.
  static void applySceneErrorCB(SoError const* error, void* manager);
  void displayError();
  /// Says something in the status bar for a few seconds.
  void announce(QString const& what);
  // What a search looks at and how: SoVantleTreeView::FindMode and FindFlag. One state for all who search.
  int getFindMode() const { return m_findMode; }
  int getFindFlags() const { return m_findFlags; }
  /// Any other value than those of FindMode changes nothing.
  void setFindMode(int mode);
  void setFindFlags(int flags);
  /// A row of the tree is about to be destroyed.
  void forgetItem(SoTreeViewItem* item);

 public Q_SLOTS:
  virtual void reloadFile();
  virtual void closeApp();
  virtual void printFile();
  virtual void printQt();
  virtual void openFile();
  virtual void openFileRecent();
  virtual void newFile();
  virtual void saveFile();
  virtual void saveAsFile();
  virtual void closeFile();
  virtual void cut();
  virtual void copy();
  virtual void paste();
  virtual void nodeNameChanged(SoNode* node);
  virtual void editPreferences();
  void launchAboutVantleFrame();
  void launchVantleHelpViewer();
  virtual void nodeSetOverride(bool on);
  void undo();
  void redo();
  void addCommand(VntCommand* command);
  void setScene(SoNode* root, bool clearUndoCommand = true);
  void setNodeOverview(SoTreeViewItem* item = nullptr, bool addTab = true);
  void selectedNodeChanged(SoFieldContainer* node);
  void saveSubSceneGraph(SoTreeViewItem* item = nullptr);
  void highlightNodeItem();
  void closeNodeOverview(int index = -1);
  void expandAll(QTreeWidgetItem* startItem = nullptr);
  void showAllReferences(SoTreeViewItem* item = nullptr);
  void removeAllReferences(SoTreeViewItem* item = nullptr);
  void nextReference();
  void previousReference();
  void ignoreEnable();
  void treeAddNode(SoTreeViewItem* itemToDelete = nullptr);
  void treeMoveNode(SoTreeViewItem* itemToMove, SoTreeViewItem* itemInsertAfter, bool spaceBarPressed);
  void treeDeleteNode(SoTreeViewItem* itemToDelete = nullptr);
  void setFieldWatch(SoFieldItem* fieldItem = nullptr, QPoint pos = QPoint());
  void setFieldEditorFromWatch(QTreeWidgetItem* entry);
  void setNodeOverviewFromWatch(QTreeWidgetItem* entry);
  void deleteFieldWatch(QTreeWidgetItem* fieldItem = nullptr);
  SoVantleEdition* getNodeEdition() const { return m_edition; }
  /// One entry a tab of the node overview; null where a container has no row.
  QList<SoTreeViewItem*>* getItemOverviewList() const { return m_overviewItems.get(); }
  void toggleBookmark();
  void nextBookmark();
  void previousBookmark();
  void clearBookmark();
  void showFindDialog();
  void find();
  void findNext();
  void findPrevious();
  void setFilter(int filter);
  void cutNode();
  void copyNode();
  void pasteNode();

 private:
  SoVantleMainFrame* mainFrame() const;
  SoTreeViewItem* currentTreeItem() const;
  void endOperation();
  void describeHistory();
  void setOverviewItem(SoTreeViewItem* item);
  void goTo(SoTreeViewItem* item, bool backwards, QString const& onlyOne);
  void findWith(int flags);
  QString nothingFound(QString const& text, int flags) const;

  SoVantleTreeView* m_treeView = nullptr; // the viewer's
  std::unique_ptr<QString> m_pendingReadError;
  bool m_changed = false;
  bool m_clearPending = false;
  int m_busyDepth = 0;
  std::unique_ptr<QList<VntCommand*>> m_commandHistory; // may hold a command more than once
  int m_historyIndex = 0;                               // of the last executed command, -1: none
  std::unique_ptr<QList<SoTreeViewItem*>> m_overviewItems;
  SoVantleEdition* m_edition = nullptr; // the viewer's
  /// Where a watched field was taken from; the key is the watch entry's address as a decimal number.
  std::unique_ptr<QMultiHash<QString, SoTreeViewItem*>> m_watchOrigins;
  SoNode* m_nodeClipboard = nullptr;
  int m_findMode = 0;
  int m_findFlags = 0;
};
