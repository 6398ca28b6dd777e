#pragma once

#include <QList>
#include <QString>
#include <QTreeWidgetItem>
#include <memory>

#include "kestrava/base/SbName.h"

class SoBaseKit;
class SoField;
class SoNode;
class SoVantleTreeView;

/// What a row knows about the node kit that its node belongs to.
struct SoTreeViewItemPrivate {
  struct SoBaseKitItemPrivate {
    SoBaseKitItemPrivate(SoBaseKit* kit, SoNode* node);
    SoBaseKitItemPrivate(SoBaseKit* kit, SbName const& part);

    SoBaseKit* baseKit;
    SbName partName;     ///< empty: the node is no part of the kit
    int partType = 0;    ///< 0 no part, 2 "topSeparator", 1 any other part
    int partNumber = -1; ///< in the kit's catalog
    bool isPart = false;
    int listEntry = -1; ///< for an entry of a list: the index that the name holds
  };
  std::unique_ptr<SoBaseKitItemPrivate> kitItem; ///< null outside of kits
};

/// A row of the scene tree: one place of one node. Holds no reference to the node. Rows show what the node
/// says at the moment they are painted: nothing but the node's place is stored, so that a million of them
/// fit.
class SoTreeViewItem : public QTreeWidgetItem {
 public:
  static constexpr int TYPE = QTreeWidgetItem::UserType + 1;

  SoTreeViewItem(QTreeWidget* view, SoNode* node, SoField* field, SoBaseKit* kit);
  SoTreeViewItem(SoTreeViewItem* parent, SoNode* node, SoField* field, SoBaseKit* kit);
  SoTreeViewItem(QTreeWidget* view, SoTreeViewItem* after, SoNode* node, SoField* field, SoBaseKit* kit);
  SoTreeViewItem(SoTreeViewItem* parent, SoTreeViewItem* after, SoNode* node, SoField* field, SoBaseKit* kit);
  /// Takes the row, and everything below it, out of its view first. Needs little stack however deep it goes.
  ~SoTreeViewItem() override;
  SoTreeViewItem(SoTreeViewItem const&) = delete;
  SoTreeViewItem& operator=(SoTreeViewItem const&) = delete;

  /// Null when it is no row of a scene tree.
  static SoTreeViewItem* cast(QTreeWidgetItem* item) {
    return item && item->type() == TYPE ? static_cast<SoTreeViewItem*>(item) : nullptr;
  }

  QVariant data(int column, int role) const override;
  void setData(int column, int role, QVariant const& value) override;

  /// Takes a child row out of the tree without destroying it.
  virtual void takeItem(QTreeWidgetItem* item);
  virtual void takeItem(int index);
  /// Appends a row.
  virtual void insertItem(QTreeWidgetItem* item);
  virtual int rtti() const { return TYPE; }
  virtual SoNode* getNode() const { return m_node; }
  virtual SoNode* getParentNode() const;
  virtual bool fromBaseKit() const { return kitItem(); }
  virtual bool baseKitPart() const { return kitItem() && kitItem()->isPart; }
  virtual int partNumber() const { return baseKitPart() ? kitItem()->partNumber : -1; }
  virtual SbName getParentPartName() const;
  virtual SbName partName() const;
  virtual bool isPartPublic() const;
  virtual SoBaseKit* getBaseKit() const { return kitItem() ? kitItem()->baseKit : nullptr; }
  /// The arrow in column 3; never shown for a node that is referenced once.
  virtual void setShowRefImage(bool show);

  void init(SoBaseKit* kit);
  /// The field that the node is a value of; null for a child of a group.
  SoField* getFieldParent() const { return m_field; }
  int getRefCount() const;
  /// Part name, else the node's own name.
  SbName getNodeName() const;
  bool fromField() const { return m_field; }
  /// This row or one above it is a value of a field.
  bool fromSubTreeField() const { return m_fromSubTreeField; }
  bool showRefImage() const { return m_showRef && getRefCount() >= 2; }
  SoVantleTreeView* listView() const;
  SoTreeViewItem* parent() const { return static_cast<SoTreeViewItem*>(QTreeWidgetItem::parent()); }

  SoTreeViewItem* firstChild() const { return rawChild(0); }
  /// Counts only children that are in the scene graph, except while the view loads. Null past the end.
  SoTreeViewItem* child(int index) const;
  SoTreeViewItem* rawChild(int index) const {
    return static_cast<SoTreeViewItem*>(QTreeWidgetItem::child(index));
  }
  using QTreeWidgetItem::childCount;
  /// `all` false: without the ignored ones.
  int childCount(bool all) const;
  SoTreeViewItem* nextSibling() const;
  SoTreeViewItem* previousSibling() const;
  /// The place among its siblings, ignored ones included.
  int row() const;
  bool childExist(SoNode* node, SoField* field, bool& ignored, int from) const;
  /// True when a row above `other` shows this row's node.
  bool isParent(SoTreeViewItem const* other) const;
  void getListPathFromRoot(QList<SoTreeViewItem*>& list);

  /// The order of places in the scene, for rows of one depth; rows of different depths have none.
  bool operator<(SoTreeViewItem const& other) const { return compareTo(other) < 0; }
  using QTreeWidgetItem::operator<;
  int compareTo(SoTreeViewItem const& other) const;
  /// The order in which rows stand below each other; total.
  static bool isAbove(SoTreeViewItem const* a, SoTreeViewItem const* b);

  /// Position among the children of the parent node, -1 for a row that is not in the scene graph.
  int getSceneIndex() const;
  void setSceneIndex(int index);
  /// Numbers the children anew; not while the view loads.
  void generateSceneIndex();
  /// The same, but put off until somebody asks for a number.
  void sceneIndicesChanged() { m_childrenNumbered = false; }

  bool isIgnored() const { return m_ignored; }
  /// Also takes the row out of, or back into, the scene graph.
  void setIgnoreFlag(bool on);
  bool isInSceneGraph() const { return m_inSceneGraph; }
  void setIsInSceneGraph(bool on);
  /// Its children have no rows yet: they come when the row is opened.
  bool isUnbuilt() const { return m_unbuilt; }
  bool isBookmarked() const { return m_bookmarked; }
  void setBookmarked(bool on);
  /// A row without the flag is passed over when it becomes current.
  bool isRowSelectable() const { return m_rowSelectable; }
  void setRowSelectable(bool on) { m_rowSelectable = on; }

  /// Hidden by the filter. In a large tree the view itself hides a row only when the row above it is opened.
  bool isHidden() const { return m_filtered || QTreeWidgetItem::isHidden(); }

  void deleteAllBranches(bool keepFieldItems);
  /// Rows of a node that loads its children from elsewhere.
  void rebuildExternalSceneTopology(SoNode* node);

 private:
  friend class SoNodeRowIndex;
  friend class SoReferencedNodeManager;
  friend class SoVantleTreeView;
  using KitItem = SoTreeViewItemPrivate::SoBaseKitItemPrivate;

  /// A row outside of any view, which is to come below a row, which stands, or is to stand, below another.
  SoTreeViewItem(SoNode* node, SoField* field, SoTreeViewItem const* above, int sceneIndex,
                 SoTreeViewItem const* aboveThat);
  /// The kit that rows below this one belong to, null when there is none.
  SoBaseKit* kitBelow() const;
  SbName partNameBelow(SoBaseKit* kit, SoNode* node, SoField* field, int sceneIndex,
                       SoTreeViewItem const* list) const;
  bool hasPartNameOf(SbName& name) const;
  int placeInScene() const;
  void construct(SoBaseKit* kit, SoTreeViewItem const* parentRow);
  KitItem* kitItem() const { return m_private ? m_private->kitItem.get() : nullptr; }
  int shownRefCount() const;
  void numberChildren() const;
  void leaveView();
  void destroyChildren();

  mutable int m_sceneIndex = -1;
  bool m_fromSubTreeField : 1 = false;
  bool m_ignored : 1 = false;
  bool m_bookmarked : 1 = false;
  bool m_rowSelectable : 1 = true;
  bool m_inSceneGraph : 1 = true;
  bool m_showRef : 1 = false;
  mutable bool m_childrenNumbered : 1 = true;
  bool m_filtered : 1 = false;          // the filter wants it hidden
  bool m_hidden : 1 = false;            // the filter has hidden it in the view
  bool m_hasRowsOutOfScene : 1 = false; // some child is not in the scene graph
  bool m_unbuilt : 1 = false;
  SoNode* m_node;
  SoField* m_field;
  std::unique_ptr<SoTreeViewItemPrivate> m_private; // only below a kit
  // The ring of all rows of this node, see SoNodeRowIndex.
  SoTreeViewItem* m_nextSame = nullptr;
  SoTreeViewItem* m_previousSame = nullptr;
};
