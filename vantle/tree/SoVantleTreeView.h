#pragma once

#include <QColor>
#include <QFont>
#include <QTreeWidget>
#include <memory>
#include <vector>

#include "kestrava/base/SbForward.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/base/SoType.h"
#include "vantle/prefs/ConfigStyle.h"
#include "vantle/session/VntNodeCategory.h"

class SoField;
class SoGraphTopologyManager;
class SoNode;
class SoPath;
class SoReferencedNodeManager;
class SoSelection;
class SoTreeViewItem;
class SoTreeViewState;

/// The scene graph as a tree of rows. Rows are built eagerly: a shared node has a subtree under each of its
/// parents.
class SoVantleTreeView : public QTreeWidget {
  Q_OBJECT
 public:
  enum Column { TYPE_COLUMN, NAME_COLUMN, REF_COUNT_COLUMN, REFERENCE_COLUMN, BOOKMARK_COLUMN, COLUMN_COUNT };
  enum FindMode { FIND_TYPE = 0, FIND_NAME = 1, FIND_ADDRESS = 2, FIND_ID = 3 };
  enum FindFlag { FIND_BACKWARD = 1, FIND_CASE_SENSITIVE = 2, FIND_EXACT = 4 };
  /// More rows than this are not built; what is missing is posted as an error.
  static constexpr int MAX_ROWS = 10'000'000;
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
  SoTreeViewItem* getItemFromPath(SoPath const* path, int from) const;
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
  void setPickAction(SbViewportRegion const& region, SbVec2s position, SoNode* root);
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

  /// Makes and registers the tree's state.
  void setState();
  static QString getTreeViewPreferencesPath() { return QStringLiteral("/TreeViewPreferences/"); }
  /// Takes fonts, colours and switches from the settings.
  void initTreeViewPreferences();
  QFont const& normalFont() const { return m_normalFont; }
  QFont const& fieldNodeFont() const { return m_fieldNodeFont; }
  /// Rows of nodes that are values of fields have a font of their own.
  bool isFieldNodeFontOn() const { return m_showNodeFromField; }

  /// "SoCube" and "Cube" both give "_so_cube".
  static QString referencePageName(QString const& typeName);

 public Q_SLOTS:
  void initTree(SoNode* root);
  void selectChange(QTreeWidgetItem* current, QTreeWidgetItem* previous);
  void onItemClicked(QTreeWidgetItem* item, int column);
  void onCustomContextMenu(QPoint const& pos);
  void resizeAllColumns();

 Q_SIGNALS:
  /// For those who want to know; the rows are built by then.
  void newSceneGraph();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void drawBranches(QPainter* painter, QRect const& rect, QModelIndex const& index) const override;

 private:
  friend class SoTreeViewItem;
  struct ChildNode {
    SoNode* node;
    SoField* field;
  };
  /// What a fresh build shows below a node, in order.
  static void childrenOf(SoNode* node, std::vector<ChildNode>& children);
  static void fieldChildrenOf(SoNode* node, std::vector<ChildNode>& children);
  /// All rows below a row that has none yet and is in no view.
  void buildBelow(SoTreeViewItem* root);
  /// A row and all rows below it, outside of the view.
  SoTreeViewItem* makeRows(SoNode* node, SoTreeViewItem* parent, SoField* field, int sceneIndex);
  void numbered(SoTreeViewItem* parent, SoTreeViewItem* row, int position);
  void registerRows(SoTreeViewItem* top);
  SoTreeViewItem* childRowOf(SoTreeViewItem* row, SoNode* node, int index) const;
  SoTreeViewItem* rowOfRoot(SoPath const* path, int& position) const;
  int childPosition(SoTreeViewItem* row, SoNode* tail) const;
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
  void openReferencePage(SoTreeViewItem* item);
  void buildContextMenu(SoTreeViewItem* item);

  bool m_showRefCount = true;
  bool m_showName = true;
  bool m_showNodeFromField = true;
  QColor m_nameColor, m_refCountColor, m_typeColor, m_fieldNodeColor;
  QFont m_normalFont, m_fieldNodeFont;
  std::unique_ptr<SoReferencedNodeManager> m_references;
  std::unique_ptr<SoGraphTopologyManager> m_topology;
  std::unique_ptr<SoTreeViewState> m_state;
  SoRef<SoNode> m_selection; // an SoSelection
  bool m_followInOverview = true;
  bool m_suppressHighlight = false;
  bool m_inSelectedPath = false;
  bool m_spaceHeld = false;
  bool m_loading = false;
  bool m_batch = false; // many rows open: the columns are fitted once, at the end
  bool m_limitReported = false;
  bool m_anyFiltered = false; // the filter wants some category hidden
  bool m_everHidden = false;  // it has hidden rows of this tree
  int m_filter = Vnt::ALL_NODE_CATEGORIES;
  QMenu* m_contextMenu; // for the current row; so far it holds what plug-ins offer
  Qt::MouseButton m_lastButton = Qt::NoButton;
  QPoint m_lastReleasePos; // on the screen
};
