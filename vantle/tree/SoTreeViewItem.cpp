#include "vantle/tree/SoTreeViewItem.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <cstdlib>
#include <vector>

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoNodekitCatalog.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/frame/SoCommandManager.h"
#include "vnt/QtText.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoVantleTreeView.h"

SoTreeViewItemPrivate::SoBaseKitItemPrivate::SoBaseKitItemPrivate(SoBaseKit* kit, SoNode* node)
    : SoBaseKitItemPrivate(kit, SbName(kit->getPartString(node))) {}

SoTreeViewItemPrivate::SoBaseKitItemPrivate::SoBaseKitItemPrivate(SoBaseKit* kit, SbName const& part)
    : baseKit(kit), partName(part), isPart(!part.empty()) {
  if (!isPart) return;
  static SbName const topSeparator("topSeparator");
  partType = partName == topSeparator ? 2 : 1;
  partNumber = kit->getNodekitCatalog().getPartNumber(partName);
  std::size_t const bracket = partName.str().find('[');
  if (bracket != std::string::npos) listEntry = std::atoi(partName.c_str() + bracket + 1);
}

namespace {

SoVantleTreeView* sceneTree(QTreeWidget* view) { return qobject_cast<SoVantleTreeView*>(view); }

/// Appends everything below the items, each before its children.
void appendBelow(std::vector<QTreeWidgetItem*>& items) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    for (int k = 0, n = items[i]->childCount(); k < n; ++k) items.push_back(items[i]->child(k));
  }
}

} // namespace

SoTreeViewItem::SoTreeViewItem(QTreeWidget* view, SoNode* node, SoField* field, SoBaseKit* kit)
    : QTreeWidgetItem(view, TYPE), m_node(node), m_field(field) {
  construct(kit, nullptr);
}

SoTreeViewItem::SoTreeViewItem(SoTreeViewItem* parent, SoNode* node, SoField* field, SoBaseKit* kit)
    : QTreeWidgetItem(parent, TYPE), m_node(node), m_field(field) {
  construct(kit, parent);
}

SoTreeViewItem::SoTreeViewItem(QTreeWidget* view, SoTreeViewItem* after, SoNode* node, SoField* field,
                               SoBaseKit* kit)
    : QTreeWidgetItem(view, after, TYPE), m_node(node), m_field(field) {
  construct(kit, nullptr);
}

SoTreeViewItem::SoTreeViewItem(SoTreeViewItem* parent, SoTreeViewItem* after, SoNode* node, SoField* field,
                               SoBaseKit* kit)
    : QTreeWidgetItem(parent, after, TYPE), m_node(node), m_field(field) {
  construct(kit, parent);
}

SoTreeViewItem::SoTreeViewItem(SoNode* node, SoField* field, SoTreeViewItem const* above, int sceneIndex,
                               SoTreeViewItem const* aboveThat)
    : QTreeWidgetItem(TYPE),
      m_sceneIndex(sceneIndex),
      m_fromSubTreeField(field || (above && above->m_fromSubTreeField)),
      m_node(node),
      m_field(field) {
  SoBaseKit* const kit = above ? above->kitBelow() : nullptr;
  if (!kit) return;
  m_private = std::make_unique<SoTreeViewItemPrivate>();
  m_private->kitItem = std::make_unique<KitItem>(kit, above->partNameBelow(kit, node, field, sceneIndex, aboveThat));
}

SoBaseKit* SoTreeViewItem::kitBelow() const {
  return m_node->isOfType(SoBaseKit::getClassTypeId()) ? static_cast<SoBaseKit*>(m_node) : getBaseKit();
}

/// What the kit answers for the part string of a node below this row. Found from the row's place: the kit
/// itself would look through all entries of all its lists for every row.
SbName SoTreeViewItem::partNameBelow(SoBaseKit* kit, SoNode* node, SoField* field, int sceneIndex,
                                     SoTreeViewItem const* list) const {
  SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
  if (field && field->getContainer() == kit) {
    return catalog.getPartNumber(field->getName()) > 0 ? field->getName() : SbName();
  }
  // A list that stands somewhere below is one like any other node.
  bool const inList = list && list->baseKitPart() && list->kitItem()->listEntry < 0 &&
                      list->m_node->isOfType(SoNodeKitListPart::getClassTypeId()) &&
                      (!m_field || m_field->getContainer() == list->m_node);
  if (inList) return SbName(SbString::format("%s[%d]", list->partName().c_str(), sceneIndex));
  for (int i = 1; i < catalog.getNumEntries(); ++i) {
    auto const* part = static_cast<SoSFNode const*>(kit->getField(catalog.getName(i)));
    if (part && part->getValue() == node) return catalog.getName(i);
  }
  return SbName();
}

/// The place among the neighbours that are in the scene.
int SoTreeViewItem::placeInScene() const {
  int place = getSceneIndex();
  if (parent() && parent()->m_hasRowsOutOfScene) {
    for (int i = row(); i-- > 0;) place -= !parent()->rawChild(i)->m_inSceneGraph;
  }
  return place;
}

/// The name that a row further down in its kit has because its node is a part of that, too.
bool SoTreeViewItem::hasPartNameOf(SbName& name) const {
  name = parent()->partNameBelow(kitItem()->baseKit, m_node, m_field, placeInScene(), parent()->parent());
  return name == partName();
}

void SoTreeViewItem::construct(SoBaseKit* kit, SoTreeViewItem const* parentRow) {
  m_fromSubTreeField = m_field || (parentRow && parentRow->m_fromSubTreeField);
  if (parentRow) parent()->sceneIndicesChanged();
  m_private.reset();
  if (kit) {
    m_private = std::make_unique<SoTreeViewItemPrivate>();
    m_private->kitItem = std::make_unique<KitItem>(kit, m_node);
  }
  if (SoVantleTreeView* view = listView()) view->getReferencedNodeManager()->addItem(this);
}

void SoTreeViewItem::init(SoBaseKit* kit) {
  m_ignored = m_bookmarked = m_showRef = false;
  m_rowSelectable = m_inSceneGraph = true;
  construct(kit, parent());
}

SoTreeViewItem::~SoTreeViewItem() {
  // Code that still meets the row on its way out passes over it.
  m_ignored = true;
  if (VntServicesImpl::isInstance()) {
    if (SoCommandManager* commands = VntServicesImpl::getImplInstance()->getCommandManager())
      commands->forgetItem(this);
  }
  leaveView();
  destroyChildren();
}

void SoTreeViewItem::leaveView() {
  QTreeWidget* const view = treeWidget();
  if (!view) return;
  SoVantleTreeView::NoScroll const still(view);
  if (SoVantleTreeView* tree = sceneTree(view)) tree->getReferencedNodeManager()->removeItem(this);
  if (SoTreeViewItem* above = parent()) {
    int const at = row();
    above->QTreeWidgetItem::takeChild(at);
    if (at < above->childCount()) above->sceneIndicesChanged();
  } else {
    view->takeTopLevelItem(view->indexOfTopLevelItem(this));
  }
}

void SoTreeViewItem::destroyChildren() {
  if (childCount() == 0) return;
  // Taken first, nothing below belongs to a view any more; then from the leaves up, so that no destructor has
  // children to destroy and the depth of the graph does not count.
  QList<QTreeWidgetItem*> const children = takeChildren();
  std::vector<QTreeWidgetItem*> items(children.begin(), children.end());
  appendBelow(items);
  for (std::size_t i = items.size(); i-- > 0;) qDeleteAll(items[i]->takeChildren());
  qDeleteAll(children);
}

SoVantleTreeView* SoTreeViewItem::listView() const { return sceneTree(treeWidget()); }

QVariant SoTreeViewItem::data(int column, int role) const {
  switch (role) {
    case Qt::DisplayRole:
      if (column == SoVantleTreeView::TYPE_COLUMN) return toQString(m_node->getTypeId().getName().toString());
      if (column == SoVantleTreeView::NAME_COLUMN) return toQString(getNodeName().toString());
      if (column == SoVantleTreeView::REF_COUNT_COLUMN) return QString::number(shownRefCount());
      break;
    case Qt::DecorationRole:
      if (column == SoVantleTreeView::TYPE_COLUMN) {
        QIcon const icon = VntNodeInfo::icon(m_node);
        return icon.isNull() ? QVariant() : QVariant(icon);
      }
      if (column == SoVantleTreeView::REFERENCE_COLUMN) {
        static QIcon const& arrow = *new QIcon(QPixmap(QStringLiteral(":/Vantle_images/ArrowShort.png")));
        return showRefImage() ? arrow : QIcon();
      }
      if (column == SoVantleTreeView::BOOKMARK_COLUMN) {
        static QIcon const& bookmark = *new QIcon(QStringLiteral(":/Vantle_icons/Icons/bookmark.png"));
        return m_bookmarked ? bookmark : QIcon();
      }
      break;
    case Qt::ForegroundRole:
      if (SoVantleTreeView const* view = listView()) return view->textColor(*this, column);
      break;
    case Qt::FontRole:
      if (SoVantleTreeView const* view = listView()) return view->textFont(*this, column);
      break;
    case Qt::ToolTipRole:
      return SoVantleTreeView::toolTipText(this);
    case Qt::UserRole:
      if (column == 0) return getSceneIndex();
      break;
    default:
      break;
  }
  return QTreeWidgetItem::data(column, role);
}

void SoTreeViewItem::setData(int column, int role, QVariant const& value) {
  if (column == 0 && role == Qt::UserRole) {
    setSceneIndex(value.toInt());
  } else {
    QTreeWidgetItem::setData(column, role, value);
  }
}

int SoTreeViewItem::getRefCount() const { return m_node->getRefCount(); }

/// Entries of a list are no values of the kit's fields, so the kit does not hold them twice.
int SoTreeViewItem::shownRefCount() const {
  int const count = getRefCount();
  bool const isHeldTwice = count > 1 && baseKitPart() && kitItem()->listEntry < 0;
  SoVantleTreeView const* const view = isHeldTwice ? listView() : nullptr;
  return view && view->countsKitReferencesOnce() ? count - 1 : count;
}

SbName SoTreeViewItem::getNodeName() const { return baseKitPart() ? partName() : m_node->getName(); }

SbName SoTreeViewItem::partName() const {
  if (!baseKitPart()) return SbName();
  KitItem* const item = kitItem();
  // Entries of a list are counted anew when others come and go.
  int const index = item->listEntry < 0 ? -1 : placeInScene();
  if (index >= 0 && index != item->listEntry) {
    std::string const& old = item->partName.str();
    item->partName =
        SbName(old.substr(0, old.find('[') + 1) + std::to_string(index) + old.substr(old.find(']')));
    item->listEntry = index;
  }
  return item->partName;
}

SoNode* SoTreeViewItem::getParentNode() const {
  SoTreeViewItem* const above = parent();
  return above ? above->getNode() : nullptr;
}

SbName SoTreeViewItem::getParentPartName() const {
  KitItem const* const item = kitItem();
  return item && item->isPart ? item->baseKit->getNodekitCatalog().getParentName(item->partNumber) : SbName();
}

bool SoTreeViewItem::isPartPublic() const {
  KitItem const* const item = kitItem();
  return item && item->isPart && item->baseKit->getNodekitCatalog().isPublic(item->partNumber);
}

void SoTreeViewItem::setShowRefImage(bool show) {
  bool const shown = show && getRefCount() >= 2;
  if (shown == m_showRef) return;
  m_showRef = shown;
  emitDataChanged();
}

void SoTreeViewItem::setBookmarked(bool on) {
  if (on == m_bookmarked) return;
  m_bookmarked = on;
  emitDataChanged();
}

void SoTreeViewItem::insertItem(QTreeWidgetItem* item) {
  SoVantleTreeView* const view = listView();
  int const at = childCount();
  addChild(item);
  if (SoTreeViewItem* const added = cast(item)) {
    if (!added->m_inSceneGraph) m_hasRowsOutOfScene = true;
    if (view) view->registerRows(added);
    if (m_childrenNumbered && added->m_inSceneGraph && !(view && view->isLoading())) added->m_sceneIndex = at;
  }
}

void SoTreeViewItem::takeItem(QTreeWidgetItem* item) {
  SoTreeViewItem* const taken = cast(item);
  if (!taken || taken->parent() != this) return;
  if (SoVantleTreeView* view = listView()) view->getReferencedNodeManager()->removeItem(taken);
  int const at = taken->row();
  QTreeWidgetItem::takeChild(at);
  if (at < childCount()) sceneIndicesChanged();
}

void SoTreeViewItem::takeItem(int index) {
  if (SoTreeViewItem* const item = rawChild(index)) takeItem(item);
}

void SoTreeViewItem::deleteAllBranches(bool keepFieldItems) {
  if (!keepFieldItems) {
    if (SoVantleTreeView* view = listView()) {
      view->deleteRows(this, 0, childCount());
    } else {
      destroyChildren();
    }
    return;
  }
  for (int i = childCount(); i-- > 0;) {
    if (!rawChild(i)->m_field) delete rawChild(i);
  }
}

void SoTreeViewItem::rebuildExternalSceneTopology(SoNode* node) {
  SoVantleTreeView* const view = listView();
  if (!node || !view) return;
  if (node->isOfType(SoWWWInline::getClassTypeId())) {
    auto* const external = static_cast<SoWWWInline*>(node);
    // May load at once, and be here again for it.
    if (!external->hasChildData() && !external->isURLDataRequested()) external->requestChildrenFromURL();
  } else if (!node->isOfType(SoFile::getClassTypeId())) {
    deleteAllBranches(true);
    return;
  }
  view->updateItemChildren(this);
}
