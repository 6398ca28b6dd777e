#pragma once

#include <QColor>
#include <QFont>
#include <QKeySequence>
#include <QPointer>
#include <QTreeWidget>
#include <memory>
#include <optional>
#include <unordered_set>
#include <optional>
#include <vector>

#include "kestrava/base/SbForward.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/base/SoType.h"
#include "vantle/prefs/ConfigStyle.h"
#include "vantle/session/VntNodeCategory.h"

class QDeadlineTimer;
class SoField;
class SoGraphTopologyManager;
class SoNode;
class SoPath;
class SoPickMenu;
class SoReferencedNodeManager;
class SoSelection;
class SoTreeContextMenu;
class SoTreeViewItem;
class SoTreeViewPreferencesPage;
class SoTreeViewState;

/// The scene graph as a tree of rows. Rows are built eagerly: a shared node has a subtree under each of its
/// parents. Only where there would be more than a limit, or the user does not want to wait, rows are left
/// without children until they are opened.
class SoVantleTreeView : public QTreeWidget {
  Q_OBJECT
 public:
  enum Column { TYPE_COLUMN, NAME_COLUMN, REF_COUNT_COLUMN, REFERENCE_COLUMN, BOOKMARK_COLUMN, COLUMN_COUNT };
  enum FindMode { FIND_TYPE = 0, FIND_NAME = 1, FIND_ADDRESS = 2, FIND_ID = 3 };
  enum FindFlag { FIND_BACKWARD = 1, FIND_CASE_SENSITIVE = 2, FIND_EXACT = 4 };
  static constexpr int DEFAULT_ROW_LIMIT = 5'000'000;
  /// Deeper rows are not opened unless the user opens each: the base class needs stack for every open level.
  static constexpr int MAX_OPEN_DEPTH = 1000;

  explicit SoVantleTreeView(QWidget* parent = nullptr, char const* name = nullptr);
  ~SoVantleTreeView() override;

  /// Null: no scene.
  void setScene(SoNode* root);
  /// The node that row selection drives and below which the rows are watched: the scene is its child. Held
  /// until another one is set.
  void setGraphSelection(SoSelection* selection);
  SoSelection* getGraphSelection() const;
  SoReferencedNodeManager* getReferencedNodeManager() const { return m_references.get(); }
  SoGraphTopologyManager* getTopologyManager() const { return m_topology.get(); }
  bool isLoading() const { return m_loading; }

  // Rows.
  SoTreeViewItem* insertItem(SoNode* node, SoTreeViewItem* parent, SoField* field, int index);
  SoTreeViewItem* addItem(SoNode* node, SoTreeViewItem* parent, SoField* field) {
    return insertItem(node, parent, field, -1);
  }
  void insertItem(QTreeWidgetItem* item);
  void takeItem(QTreeWidgetItem* item);
  void takeItem(int index);
  /// Destroys all rows.
  void clear();
  void rebuildItemChildren(SoTreeViewItem* item);
  /// Appends the rows of the node's fields and catalog parts.
  void checkNodeFields(SoNode* node, SoTreeViewItem* item);

  // Rows whose children are not built.
  /// From this number of rows on the children of further ones are built when these are opened.
  void setRowLimit(int rows);
  int getRowLimit() const { return m_rowLimit; }
  /// Gives a row that is not built its children, not built themselves.
  void buildChildren(SoTreeViewItem* item);
  bool isAnyUnbuilt() const { return !m_unbuilt.empty(); }
  /// Places in the graph that have no row yet; infinite when the graph contains itself. Goes through the graph
  /// below the rows that are not built.
  double placesNotBuilt() const;
  /// Whether a long build shows how far it is, and lets events in for that, so that the user can stop it.
  void setShowingProgress(bool on) { m_showsProgress = on; }
  /// After how many milliseconds it does so.
  void setPatience(int milliseconds) { m_patience = milliseconds; }

  // Nodes that are taken out of the graph while their rows stay.
  /// Puts the node of a row out of the graph, or back; where that can not be done the status bar says why.
  void itemStateChanged(bool enable, SoTreeViewItem* item);
  /// The same without a word; false when it can not be done.
  bool changeSceneItemState(bool enable, SoTreeViewItem* item);
  /// Whether the rows below a row can be chosen.
  void setSubTreeEnable(SoTreeViewItem* item, bool enable);
  /// The ignored nodes whose place is below a node: type and name of each.
  QStringList ignoredBelow(SoNode* node) const;
  /// Puts all nodes back into the graph.
  void enableAll();

  /// Destroys a run of children, ignored ones included.
  void deleteRows(SoTreeViewItem* parent, int first, int count);
  /// Makes the rows below a row those that a fresh build would give; rows that stay keep all they have.
  /// False when nothing had to be changed.
  bool updateItemChildren(SoTreeViewItem* item);
  SoTreeViewItem* firstChild() const;
  SoTreeViewItem* currentItem() const;
  SoTreeViewItem* itemAt(QPoint const& pos) const;
  /// The last row of the tree; null for an empty one.
  SoTreeViewItem* lastItem() const;
  /// The neighbours when all rows are unfolded; null at the ends.
  static SoTreeViewItem* itemBelowInTree(SoTreeViewItem* item);
  static SoTreeViewItem* itemAboveInTree(SoTreeViewItem* item);

  // Rows and paths.
  /// Builds rows on the way that are not built yet.
  SoTreeViewItem* getItemFromPath(SoPath const* path, int from);
  /// As deep as rows exist; `node` and `index` are the first node without a row and its child index, null and
  /// -1 when there is none.
  SoTreeViewItem* getFirstExistingItemFromPath(SoPath const* path, SoNode*& node, int& index) const;
  /// A new path, already referenced for the caller, headed at the selection node; null for a null row.
  SoPath* getPathFromItem(SoTreeViewItem* item) const;
  /// Callback of the selection node; `view` is the tree.
  static void showSelectedPath(void* view, SoPath* path);
  void showSelectedPath(SoPath* path);
  void highlightPath(SoTreeViewItem* item);
  /// Whether selecting a row is to select its node in the 3D view; settled when the library is loaded.
  static bool isAutoHighlight();
  /// Whether rows show full child lists, also settled then.
  static bool isShowingInternalChildren();
  /// Makes the row of what lies there current: the deepest one that exists. Null, and everything stays as it is,
  /// where nothing was met.
  SoTreeViewItem* setPickAction(SbViewportRegion const& region, SbVec2s position, SoNode* root);
  /// Lists all that lies there in a menu beside the pointer, and does not wait for the choice.
  void listPicked(SbViewportRegion const& region, SbVec2s position, SoNode* root);
  /// The same for a path that was picked a while ago; null when its tail has left the graph.
  SoTreeViewItem* showPicked(SoPath const* path);
  /// Marks places in the 3D view in place of what is marked. Headed at the selection node.
  void markPaths(std::vector<SoRef<SoPath>> const& paths);
  void setSuppressHighlight(bool on) { m_suppressHighlight = on; }
  /// Whether a row that becomes current is shown in the node overview.
  void setFollowInOverview(bool on) { m_followInOverview = on; }
  bool isFollowInOverview() const { return m_followInOverview; }

  void expandAll(QTreeWidgetItem* item);
  void scrollTo(QModelIndex const& index, ScrollHint hint = EnsureVisible) override;
  /// The base class's own does not come by scrollTo().
  void scrollToItem(QTreeWidgetItem const* item, ScrollHint hint = EnsureVisible) {
    scrollTo(indexFromItem(item), hint);
  }
  /// Expands every row above the item.
  void ensureItemOpen(QTreeWidgetItem* item);
  /// Makes a row current and shows it.
  void showItem(SoTreeViewItem* item);
  /// A row of this node changed without its place changing.
  void refreshItem(SoTreeViewItem* item);

  void setFilter(int mask);
  int getFilter() const { return m_filter; }
  void filterItems();

  SoTreeViewItem* nextBookmark() const;
  SoTreeViewItem* previousBookmark() const;
  void clearBookmark();
  SoTreeViewItem* findBookmark(SoTreeViewItem* start, bool backwards) const;

  void resetReferences();
  void nextReference();
  void previousReference();
  void showAllReferences(SoTreeViewItem* item);
  void removeAllReferences(SoTreeViewItem* item);

  /// The next row that matches, around the end; null when there is none.
  SoTreeViewItem* find(int mode, QString const& text, int flags) const;

  /// Its entries are there from its first use on.
  QMenu* getContextMenu() const;

  /// Makes and registers the tree's state.
  void setState();
  static QString getTreeViewPreferencesPath() { return QStringLiteral("/TreeViewPreferences/"); }
  /// Takes fonts, colours and switches from the settings.
  void initTreeViewPreferences();
  QFont const& normalFont() const { return m_normalFont; }
  QFont const& fieldNodeFont() const { return m_fieldNodeFont; }
  /// Rows of nodes that are values of fields have a font of their own.
  bool isFieldNodeFontOn() const { return m_showNodeFromField; }
  QFont const& textFont(SoTreeViewItem const& item, int column) const;
  /// Readable on the background that the tree has at present.
  QColor textColor(SoTreeViewItem const& item, int column) const;
  /// Of the two references that a kit has to its part, one counts.
  bool countsKitReferencesOnce() const { return m_countsKitReferencesOnce; }
  /// The page stays the tree's; the slots are texts.
  void getPreferences(QWidget*& page, QString& title, QObject*& receiver, char const*& initSlot,
                      char const*& setSlot);

  /// The way from the root row to a row in one line: type, name, and the child index or the field of each step.
  static QString pathText(SoTreeViewItem const* item);
  /// The same with a line for each step, and what there is no room for in the columns.
  static QString toolTipText(SoTreeViewItem const* item);

  static QKeySequence copyPathKey() { return {Qt::CTRL | Qt::SHIFT | Qt::Key_C}; }

  /// "SoCube" and "Cube" both give "_so_cube".
  static QString referencePageName(QString const& typeName);

 public Q_SLOTS:
  void initTree(SoNode* root);
  void selectChange(QTreeWidgetItem* current, QTreeWidgetItem* previous);
  void onItemClicked(QTreeWidgetItem* item, int column);
  /// Runs the menu of the current row, where a mouse button was let go last.
  void onCustomContextMenu(QPoint const& pos);
  void addNode();
  void addNode(QString const& typeName);
  void resizeAllColumns();
  /// To the clipboard: of the current row.
  void copyPath();
  /// The page reads the settings, and writes them and lets the tree follow.
  void initPreferences();
  void setPreferences();

 Q_SIGNALS:
  /// For those who want to know; the rows are built by then.
  void newSceneGraph();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void verticalScrollbarValueChanged(int value) override;
  void hideEvent(QHideEvent* event) override;
  void drawRow(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void updateGeometries() override;
  void drawBranches(QPainter* painter, QRect const& rect, QModelIndex const& index) const override;

 private:
  friend class SoTreeViewItem;
  friend class SoReferencedNodeManager;
  struct ChildNode {
    SoNode* node;
    SoField* field;
  };
  /// While one lives, a row that becomes current because another goes is not scrolled to, which would open what
  /// the user has closed.
  class NoScroll {
   public:
    explicit NoScroll(QTreeWidget* view) : m_view(view), m_was(view->hasAutoScroll()) { view->setAutoScroll(false); }
    ~NoScroll() { m_view->setAutoScroll(m_was); }
    NoScroll(NoScroll const&) = delete;
    NoScroll& operator=(NoScroll const&) = delete;

   private:
    QTreeWidget* m_view;
    bool m_was;
  };
  /// Rows that are out of the tree for a moment because they change places, and what they come back with.
  class MovedRows {
   public:
    explicit MovedRows(SoVantleTreeView* view) : m_view(view) {}
    void take(SoTreeViewItem* row);
    /// To be called when all are back.
    void settle();

   private:
    SoVantleTreeView* m_view;
    std::vector<SoTreeViewItem*> m_rows, m_expanded;
    SoTreeViewItem* m_current = nullptr;
  };
  /// What a fresh build shows below a node, in order.
  static void childrenOf(SoNode* node, std::vector<ChildNode>& children);
  static void fieldChildrenOf(SoNode* node, std::vector<ChildNode>& children);
  static bool isRowOf(SoTreeViewItem const* row, ChildNode const& child);
  /// All rows below a row that has none yet.
  void buildBelow(SoTreeViewItem* root, SoTreeViewItem const* above);
  void addChildRows(SoTreeViewItem* row, std::vector<ChildNode> const& children, SoTreeViewItem const* above);
  bool buildWaiting(std::vector<SoTreeViewItem*>& waiting, QDeadlineTimer time, SoTreeViewItem const* above = nullptr);
  void buildWithProgress(SoNode* root);
  void buildOpened(QModelIndex const& index);
  void setUnbuilt(SoTreeViewItem* row, bool on);
  static double countPlaces(SoNode* node, std::unordered_map<SoNode const*, double>& known);
  static void dropIgnored(std::vector<SoTreeViewItem*> const& ignored,
                          std::vector<SoTreeViewItem*> const& rows, std::vector<ChildNode>& wanted);
  void arrange(SoTreeViewItem* item, SoTreeViewItem* before, std::vector<SoTreeViewItem*> const& rows,
               std::vector<ChildNode> const& wanted);
  SoTreeViewItem* currentBelow(SoTreeViewItem const* item) const;
  bool leaveCurrent(SoTreeViewItem* parent, int first, int count);
  void hideAnew(SoTreeViewItem* top);
  static QString whyNotIgnored(SoTreeViewItem const* item);
  static QString whyNotEnabled(SoTreeViewItem const* item);
  bool takeOut(SoTreeViewItem* item);
  bool putBack(SoTreeViewItem* item);
  void restoreIgnoredRows(SoTreeViewItem* row, SoTreeViewItem const* above);
  void restoreIgnoredBelow(SoTreeViewItem* top);
  /// A row and all rows below it, outside of the view.
  SoTreeViewItem* makeRows(SoNode* node, SoTreeViewItem* parent, SoField* field, int sceneIndex);
  void numbered(SoTreeViewItem* parent, SoTreeViewItem* row, int position);
  void registerRows(SoTreeViewItem* top);
  void rowGoes(SoTreeViewItem* row);
  SoTreeViewItem* childRowOf(SoTreeViewItem* row, SoNode* node, int index) const;
  SoTreeViewItem* rowOfRoot(SoPath const* path, int& position) const;
  int childPosition(SoTreeViewItem* row, SoNode* tail) const;
  SoTreeViewItem* deepestItem(SoPath const* path);
  void buildAlong(SoPath const* path);
  SoTreeViewItem* followPath(SoPath const* path, int position, SoNode*& missing, int& index) const;
  void showReference(SoTreeViewItem* item);
  void openAll(std::vector<QModelIndex> const& rows);
  void showInOverview(SoTreeViewItem* item);
  /// A row becomes current because of a pick in the 3D view.
  static bool isPicking();
  void markFiltered(SoTreeViewItem* top);
  void hideIn(QModelIndex const& parent, int first, int end, bool all);
  void applyFilter(QModelIndex const& parent);
  void stepAround(SoTreeViewItem*& item, bool backwards) const;
  bool isFieldNodeStyled(SoTreeViewItem const& item) const;
  void followPalette();
  void openReferencePage(SoTreeViewItem* item);
  QPoint menuPosition() const;
  SoTreeViewItem* draggedItem() const;
  void dragRow();
  void forgetDrag();
  bool isRowDrag(QDropEvent const* event) const;
  static std::unordered_set<SoNode const*> nodesBelow(SoNode* top);
  SoTreeViewItem* dropTargetAt(QPoint const& pos) const;
  void setDropTarget(SoTreeViewItem* item);

  bool m_showRefCount = true;
  bool m_showName = true;
  bool m_showNodeFromField = true;
  QColor m_nameColor, m_refCountColor, m_typeColor, m_fieldNodeColor;
  QFont m_normalFont, m_fieldNodeFont;
  std::optional<QFont> m_nameFont, m_refCountFont; // in place of the row's, once they were chosen
  bool m_countsKitReferencesOnce = false;
  bool m_isDark = false; // the desktop's colours are
  std::unique_ptr<SoTreeViewPreferencesPage> m_preferencesPage;
  std::unique_ptr<SoReferencedNodeManager> m_references;
  std::unique_ptr<SoGraphTopologyManager> m_topology;
  std::unique_ptr<SoTreeViewState> m_state;
  SoRef<SoNode> m_selection; // an SoSelection
  bool m_followInOverview = true;
  bool m_suppressHighlight = false;
  bool m_inSelectedPath = false;
  bool m_spaceHeld = false;
  bool m_loading = false;
  QPersistentModelIndex m_topRow; // in sight; rows that come and go above it do not move it
  bool m_batch = false; // many rows open: the columns are fitted once, at the end
  bool m_showsProgress = false;
  int m_patience = 400;
  int m_builds = 0;
  int m_rowLimit = DEFAULT_ROW_LIMIT;
  std::unordered_set<SoTreeViewItem*> m_unbuilt;
  bool m_anyFiltered = false; // the filter wants some category hidden
  bool m_everHidden = false;  // it has hidden rows of this tree
  int m_filter = Vnt::ALL_NODE_CATEGORIES;
  QPointer<SoPickMenu> m_pickMenu;
  SoTreeContextMenu* m_contextMenu;
  bool m_menuRequested = false; // by a button that is still down
  Qt::MouseButton m_lastButton = Qt::NoButton;
  std::optional<QPoint> m_lastReleasePos; // on the screen
  int m_pressedKey = 0;                   // pressed in the view and not released yet
  struct Drag {
    QPersistentModelIndex row; // pressed, and perhaps dragged then
    QPoint pressPos;
    bool isArmed = false;
    bool isRunning = false;
    std::unordered_set<SoNode const*> refused; // as targets; perhaps no longer alive
    QPersistentModelIndex target;
    QPoint pos; // over the target
  } m_drag;
};
