#include <vector>

#include "kestrava/base/SoError.h"
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

void SoVantleTreeView::buildBelow(SoTreeViewItem* top) {
  std::vector<ChildNode> children;
  QList<QTreeWidgetItem*> rows;
  std::vector<SoTreeViewItem*> waiting{top};
  while (!waiting.empty()) {
    SoTreeViewItem* const row = waiting.back();
    waiting.pop_back();
    children.clear();
    childrenOf(row->m_node, children);
    if (children.empty()) continue;
    if (m_references->rowCount() + static_cast<int>(children.size()) > MAX_ROWS) {
      if (!std::exchange(m_limitReported, true)) {
        SoDebugError::post("SoVantleTreeView", "the scene has more than %d places; the rest is not shown",
                           MAX_ROWS);
      }
      return;
    }
    rows.clear();
    rows.reserve(static_cast<qsizetype>(children.size()));
    for (ChildNode const& child : children) {
      auto* const added = new SoTreeViewItem(child.node, child.field, row, static_cast<int>(rows.size()));
      m_references->addItem(added);
      rows.append(added);
    }
    // Still outside of the view: nobody is told of single rows.
    row->addChildren(rows);
    for (auto i = rows.size(); i-- > 0;) waiting.push_back(static_cast<SoTreeViewItem*>(rows[i]));
  }
}

SoTreeViewItem* SoVantleTreeView::makeRows(SoNode* node, SoTreeViewItem* parent, SoField* field,
                                           int sceneIndex) {
  auto* const row = new SoTreeViewItem(node, field, parent, sceneIndex);
  m_references->addItem(row);
  buildBelow(row);
  return row;
}

SoTreeViewItem* SoVantleTreeView::insertItem(SoNode* node, SoTreeViewItem* parent, SoField* field,
                                             int index) {
  if (!node) return nullptr;
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
  markFiltered(row);
  return row;
}

/// Gives a new row its number, or puts the numbering off when rows behind it have to move up.
void SoVantleTreeView::numbered(SoTreeViewItem* parent, SoTreeViewItem* row, int position) {
  if (m_loading) return;
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
  m_references->clearNodeMap();
  QTreeWidget::clear();
  m_limitReported = m_everHidden = false;
}

/// A run of children, the rows below them included.
void SoVantleTreeView::deleteRows(SoTreeViewItem* parent, int first, int count) {
  if (count == 0) return;
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

bool SoVantleTreeView::updateItemChildren(SoTreeViewItem* item) {
  std::vector<ChildNode> wanted;
  childrenOf(item->m_node, wanted);
  std::vector<SoTreeViewItem*> rows; // those in the scene
  for (int i = 0, n = item->childCount(); i < n; ++i) {
    SoTreeViewItem* const row = item->rawChild(i);
    if (row->m_inSceneGraph && !row->m_ignored) {
      rows.push_back(row);
      continue;
    }
    // A node that the user has set to ignored keeps this row; when it comes back it gets no second one.
    auto const same = [row](ChildNode const& child) {
      return child.node == row->m_node && child.field == row->m_field;
    };
    auto const found = std::find_if(wanted.begin(), wanted.end(), same);
    if (found != wanted.end()) wanted.erase(found);
  }
  auto const equal = [](SoTreeViewItem const* row, ChildNode const& child) {
    return row->m_node == child.node && row->m_field == child.field;
  };
  // What is the same at both ends stays.
  std::size_t head = 0;
  while (head < rows.size() && head < wanted.size() && equal(rows[head], wanted[head])) ++head;
  std::size_t oldEnd = rows.size(), newEnd = wanted.size();
  while (oldEnd > head && newEnd > head && equal(rows[oldEnd - 1], wanted[newEnd - 1])) --oldEnd, --newEnd;
  if (head == oldEnd && head == newEnd) return false;

  if (head == 0 && newEnd == 0 && rows.size() == static_cast<std::size_t>(item->childCount()) &&
      wanted.empty()) {
    deleteRows(item, 0, item->childCount());
    return true;
  }
  for (std::size_t i = oldEnd; i-- > head;) delete rows[i];
  int position = head > 0 ? rows[head - 1]->row() + 1 : 0;
  QList<QTreeWidgetItem*> added;
  for (std::size_t i = head; i < newEnd; ++i) {
    added.append(makeRows(wanted[i].node, item, wanted[i].field, position + static_cast<int>(i - head)));
  }
  item->insertChildren(position, added);
  item->sceneIndicesChanged();
  for (QTreeWidgetItem* row : added) markFiltered(static_cast<SoTreeViewItem*>(row));
  return true;
}

void SoVantleTreeView::initTree(SoNode* root) {
  m_loading = true;
  clear();
  if (root) {
    SoTreeViewItem* const row = insertItem(root, nullptr, nullptr, 0);
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
