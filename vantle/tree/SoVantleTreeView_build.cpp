#include <vector>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFBufferObject.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodekitCatalog.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoIgnoredNodes.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// Building rows from the scene graph.

namespace {

// Read once, when the library is loaded.
bool const autoHighlight = SoPreferences::getBool("KSV_VANTLE_AUTO_HIGHLIGHT", true);
bool const showInternalChildren = SoPreferences::getBool("VANTLE_SHOW_INTERNAL_CHILDREN", false);
bool const launchedByHost =
    SoPreferences::getBool("KSRU_LAUNCH_VANTLE", SoPreferences::getBool("PLX_LAUNCH_VANTLE", false));

bool holdsManyNodes(SoType type) {
  return type.isDerivedFrom(SoMFNode::getClassTypeId()) ||
         type.isDerivedFrom(SoMFUniformShaderParameter::getClassTypeId());
}

SoBaseKit* kitOf(SoNode* node) {
  return node->isOfType(SoBaseKit::getClassTypeId()) ? static_cast<SoBaseKit*>(node) : nullptr;
}

} // namespace

bool SoVantleTreeView::isAutoHighlight() { return autoHighlight; }
bool SoVantleTreeView::isShowingInternalChildren() { return showInternalChildren; }

void SoVantleTreeView::fieldChildrenOf(SoNode* node, std::vector<ChildNode>& children) {
  SoBaseKit* const kit = kitOf(node);
  SoFieldData const* const fields = node->getFieldData();
  for (int i = 0, n = fields->getNumFields(); i < n; ++i) {
    SoField* const field = fields->getField(node, i);
    SoType const type = field->getTypeId();
    bool const single = type.isDerivedFrom(SoSFNode::getClassTypeId());
    bool const multiple = !single && holdsManyNodes(type);
    bool const buffer = kit && !single && !multiple && type.isDerivedFrom(SoSFBufferObject::getClassTypeId());
    if (!single && !multiple && !buffer) continue;
    SoField::FieldType const kind = field->getFieldType();
    if (kind == SoField::PRIVATE || kind == SoField::INTERNAL || kind == SoField::DEPRECATED) continue;
    if (buffer) {
      // Meant so: asked by the name of the class, whatever the field's name.
      bool const isSet = static_cast<SoSFBufferObject*>(field)->getValue();
      if (isSet && kit->getNodekitCatalog().getParentPartNumber("SoBufferObject") > 0) return;
      continue;
    }
    auto const* values = static_cast<SoMFNode const*>(multiple ? field : nullptr);
    for (int k = 0, count = multiple ? values->getNumValues() : 1; k < count; ++k) {
      SoNode* const value = multiple ? values->getNode(k) : static_cast<SoSFNode*>(field)->getValue();
      if (!value) continue;
      // Only parts directly below the kit have rows here; the deeper ones stand below those.
      if (kit && kit->getNodekitCatalog().getParentPartNumber(field->getName()) > 0) return;
      children.push_back({value, field});
    }
  }
}

void SoVantleTreeView::childrenOf(SoNode* node, std::vector<ChildNode>& children) {
  bool const group = node->isOfType(SoGroup::getClassTypeId());
  bool const loadsChildren =
      !group && (node->isOfType(SoFile::getClassTypeId()) || node->isOfType(SoWWWInline::getClassTypeId()));
  if (!group && !loadsChildren && !launchedByHost && !showInternalChildren) {
    fieldChildrenOf(node, children);
    return;
  }
  SoChildList const* const list = node->getChildren();
  if (!list) return;
  // The first child of an inline is its own affair.
  int const first =
      !showInternalChildren && loadsChildren && node->isOfType(SoWWWInline::getClassTypeId()) ? 1 : 0;
  for (int i = first; i < list->getLength(); ++i) children.push_back({(*list)[i], nullptr});
}

/// The rows of a node's children, in order, below a row that has none and stands, or is to stand, below another.
void SoVantleTreeView::addChildRows(SoTreeViewItem* row, std::vector<ChildNode> const& children,
                                    SoTreeViewItem const* above) {
  QList<QTreeWidgetItem*> rows;
  rows.reserve(static_cast<qsizetype>(children.size()));
  for (ChildNode const& child : children) {
    auto* const added = new SoTreeViewItem(child.node, child.field, row, static_cast<int>(rows.size()), above);
    m_references->addItem(added);
    rows.append(added);
  }
  row->addChildren(rows);
}

void SoVantleTreeView::buildBelow(SoTreeViewItem* top, SoTreeViewItem const* above) {
  std::vector<SoTreeViewItem*> waiting{top};
  buildWaiting(waiting, QDeadlineTimer::Forever, above);
}

SoTreeViewItem* SoVantleTreeView::makeRows(SoNode* node, SoTreeViewItem* parent, SoField* field,
                                           int sceneIndex) {
  auto* const row = new SoTreeViewItem(node, field, parent, sceneIndex, parent ? parent->parent() : nullptr);
  m_references->addItem(row);
  buildBelow(row, parent);
  return row;
}

SoTreeViewItem* SoVantleTreeView::insertItem(SoNode* node, SoTreeViewItem* parent, SoField* field,
                                             int index) {
  if (!node) return nullptr;
  if (parent) buildChildren(parent);
  int const count = parent ? parent->childCount() : topLevelItemCount();
  int position = index < 0 ? count : std::min(index, count);
  if (index < 0 && parent) {
    while (position > 0 && !parent->rawChild(position - 1)->m_inSceneGraph) --position;
  }
  SoTreeViewItem* const row = makeRows(node, parent, field, index < 0 ? count : index);
  if (!parent) {
    insertTopLevelItem(position, row);
  } else {
    parent->insertChild(position, row);
    numbered(parent, row, position);
  }
  if (parent && parent->m_ignored) row->setDisabled(true);
  markFiltered(row);
  return row;
}

/// Gives a new row its number, or puts the numbering off when rows behind it have to move up.
void SoVantleTreeView::numbered(SoTreeViewItem* parent, SoTreeViewItem* row, int position) {
  if (position + 1 == parent->childCount() && parent->m_childrenNumbered) {
    row->m_sceneIndex = position;
  } else {
    parent->sceneIndicesChanged();
  }
}

void SoVantleTreeView::insertItem(QTreeWidgetItem* item) {
  addTopLevelItem(item);
  if (SoTreeViewItem* row = SoTreeViewItem::cast(item)) registerRows(row);
}

void SoVantleTreeView::takeItem(QTreeWidgetItem* item) {
  SoTreeViewItem* const row = SoTreeViewItem::cast(item);
  if (!row || row->treeWidget() != this) return;
  if (SoTreeViewItem* parent = row->parent()) {
    parent->takeItem(item);
    return;
  }
  m_references->removeItem(row);
  takeTopLevelItem(indexOfTopLevelItem(item));
}

void SoVantleTreeView::takeItem(int index) {
  if (QTreeWidgetItem* item = topLevelItem(index)) takeItem(item);
}

void SoVantleTreeView::registerRows(SoTreeViewItem* top) {
  std::vector<SoTreeViewItem*> rows{top};
  while (!rows.empty()) {
    SoTreeViewItem* const row = rows.back();
    rows.pop_back();
    m_references->addItem(row);
    for (int i = row->childCount(); i-- > 0;) rows.push_back(row->rawChild(i));
  }
  markFiltered(top);
}

void SoVantleTreeView::clear() {
  m_topology->ignoredNodes().rememberPlaces();
  m_references->clearNodeMap();
  m_unbuilt.clear();
  QTreeWidget::clear();
  m_everHidden = false;
}

/// The manager of references hears of every row that leaves the tree.
void SoVantleTreeView::rowGoes(SoTreeViewItem* row) {
  if (row->m_unbuilt) m_unbuilt.erase(row);
  if (!m_topology->ignoredNodes().isEmpty()) m_topology->ignoredNodes().rememberPlace(row);
}

/// A run of children, the rows below them included.
void SoVantleTreeView::deleteRows(SoTreeViewItem* parent, int first, int count) {
  if (count == 0) return;
  if (!leaveCurrent(parent, first, count)) return;
  NoScroll const still(this);
  if (count == parent->childCount()) {
    // At once: one message to the view instead of one a row.
    for (int i = 0; i < count; ++i) m_references->removeItem(parent->rawChild(i));
    qDeleteAll(parent->takeChildren());
    parent->m_childrenNumbered = true;
    parent->m_hasRowsOutOfScene = false;
    return;
  }
  for (int i = first + count; i-- > first;) {
    SoTreeViewItem* const row = parent->rawChild(i);
    m_references->removeItem(row);
    parent->QTreeWidgetItem::takeChild(i);
    delete row;
  }
  if (first < parent->childCount()) parent->sceneIndicesChanged();
}

void SoVantleTreeView::rebuildItemChildren(SoTreeViewItem* item) {
  deleteRows(item, 0, item->childCount());
  setUnbuilt(item, false);
  std::vector<ChildNode> children;
  childrenOf(item->m_node, children);
  QList<QTreeWidgetItem*> rows;
  for (ChildNode const& child : children)
    rows.append(makeRows(child.node, item, child.field, static_cast<int>(rows.size())));
  item->addChildren(rows);
  for (QTreeWidgetItem* row : rows) markFiltered(static_cast<SoTreeViewItem*>(row));
}

void SoVantleTreeView::checkNodeFields(SoNode* node, SoTreeViewItem* item) {
  std::vector<ChildNode> children;
  fieldChildrenOf(node, children);
  for (ChildNode const& child : children) insertItem(child.node, item, child.field, -1);
}

void SoVantleTreeView::initTree(SoNode* root) {
  int const build = ++m_builds;
  QPointer<SoVantleTreeView> const self(this);
  m_loading = true;
  clear();
  m_references->reset();
  if (root) {
    if (m_showsProgress) {
      buildWithProgress(root);
    } else {
      insertItem(root, nullptr, nullptr, 0);
    }
    // Events that came in meanwhile may have brought the next scene.
    if (!self || build != m_builds) return;
  }
  if (SoTreeViewItem* const row = firstChild()) {
    showInOverview(row);
    setCurrentItem(row);
    if (VntServicesImpl::isInstance()) VntServicesImpl::getImplInstance()->setSelectedNode(root);
    expandItem(row);
  }
  m_loading = false;
  resizeAllColumns();
}

SoTreeViewItem* SoVantleTreeView::firstChild() const { return SoTreeViewItem::cast(topLevelItem(0)); }
SoTreeViewItem* SoVantleTreeView::currentItem() const {
  return SoTreeViewItem::cast(QTreeWidget::currentItem());
}
SoTreeViewItem* SoVantleTreeView::itemAt(QPoint const& pos) const {
  return SoTreeViewItem::cast(QTreeWidget::itemAt(pos));
}
