#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>
#include <memory>

class QAction;
class QComboBox;
class SbString;
class SoFindBox;
class SoNode;
class SoVantleTreeView;
class SoWWWInline;

/// The inspector's window: owns every global action, its menus and tool bars.
class SoVantleMainFrame : public QMainWindow {
  Q_OBJECT
 public:
  explicit SoVantleMainFrame(QWidget* parent = nullptr, char const* name = nullptr);
  /// A window that stays above a native one of the host's, without drawing into it; 0 for an ordinary window.
  explicit SoVantleMainFrame(unsigned long long nativeWindow, char const* name = nullptr);
  ~SoVantleMainFrame() override;

  /// Once, with the shell in place.
  void init();
  /// Loads a scene file, with progress.
  void setFile(QString const& name);

  QMenu* getBookmarkMenu() const { return m_bookmarkMenu; }
  QMenu* getEditMenu() const { return m_editMenu; }
  QMenu* getFileMenu() const { return m_fileMenu; }
  QMenu* getFilterMenu() const { return m_filterMenu; }
  QMenu* getHelpMenu() const { return m_helpMenu; }
  QMenu* getTreeviewMenu() const { return m_treeviewMenu; }
  QMenu* getViewMenu() const { return m_viewMenu; }
  QMenu* getRecentFilesMenu() const { return m_recentFilesMenu; }
  QToolBar* getBookmarkToolbar() const { return m_bookmarkToolbar; }
  QToolBar* getEditToolbar() const { return m_editToolbar; }
  QToolBar* getFileToolbar() const { return m_fileToolbar; }
  QToolBar* getFilterToolbar() const { return m_filterToolbar; }
  QToolBar* getSearchToolbar() const { return m_searchToolbar; }
  QComboBox* getFindComboBox() const;
  /// The same box.
  SoFindBox* getFindBox() const { return m_findBox; }
  /// Null before and after the viewer's life, like its menu.
  SoVantleTreeView* getTreeview() const;
  QMenu* getTreeviewContextMenu() const;
  /// Root of the inspected scene.
  virtual SoNode* getVantleSceneGraph() const;

  void addMenu(QMenu* menu);
  void removeMenu(QMenu* menu);
  /// While the user has not moved a splitter the docks keep the proportions of the default layout.
  void setDefaultLayout(bool on) { m_defaultLayout = on; }

  static constexpr int CATEGORIES = 14;
  static constexpr unsigned ALL_CATEGORIES = (1u << CATEGORIES) - 1;

  // The actions. Qt parentage owns them.
  QAction *m_newAction, *m_openAction, *m_reloadAction, *m_closeAction, *m_saveAction, *m_saveAsAction,
      *m_printAction, *m_exportAction, *m_quitAction;
  QAction *m_undoAction, *m_redoAction;
  QAction *m_cutAction, *m_copyAction, *m_pasteAction, *m_deleteAction;
  QAction *m_findAction, *m_findNextAction, *m_findPreviousAction;
  QAction *m_toggleBookmarkAction, *m_nextBookmarkAction, *m_previousBookmarkAction, *m_clearBookmarksAction;
  QAction* m_toggleFilterAction;
  std::array<QAction*, CATEGORIES> m_categoryActions; // in the order of the category bits
  QAction* m_customFilterAction;
  QAction* m_preferencesAction;
  QAction *m_contentsAction, *m_aboutAction;
  QAction *m_exploreAction, *m_exploreAllAction, *m_filterAction, *m_insertAction, *m_insertClipboardAction,
      *m_ignoreEnableAction, *m_showAllReferencesAction, *m_hideAllReferencesAction, *m_nextReferenceAction,
      *m_previousReferenceAction, *m_openViewerAction;

 public Q_SLOTS:
  void on_cutAction_activated();
  void on_copyAction_activated();
  void on_pasteAction_activated();
  void on_deleteAction_activated();
  void on_toggleFilterAction_toggled(bool on);
  void on_filterChanged();
  void on_customFilterAction_toggled(bool on);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  QAction* makeAction(QString const& text, char const* iconFile = nullptr, char const* shortcut = nullptr);
  QAction* makeCheckAction(QString const& text, char const* iconFile, bool checked);
  void setupActions();
  void setupMenuBar();
  void setupToolBars();
  void setupConnections();
  void setDefaultState();
  static void WWWInlineFetchURLCB(SbString const& url, void* frame, SoWWWInline* node);

  QMenu* m_recentFilesMenu = nullptr;
  SoFindBox* m_findBox = nullptr;
  QMenu *m_bookmarkMenu = nullptr, *m_editMenu = nullptr, *m_fileMenu = nullptr, *m_filterMenu = nullptr,
        *m_helpMenu = nullptr, *m_treeviewMenu = nullptr, *m_viewMenu = nullptr;
  QToolBar *m_bookmarkToolbar = nullptr, *m_editToolbar = nullptr, *m_fileToolbar = nullptr,
           *m_filterToolbar = nullptr, *m_searchToolbar = nullptr;
  QPointer<SoVantleTreeView> m_treeview; // the viewer's
  std::unique_ptr<QWindow> m_hostWindow; // stands for the host's, which stays the host's
  unsigned m_filterMask = ALL_CATEGORIES;
  bool m_defaultLayout = false;
};
