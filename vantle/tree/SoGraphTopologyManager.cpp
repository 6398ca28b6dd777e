#include "vantle/tree/SoGraphTopologyManager.h"

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

/// False: the field's values are no rows.
bool holdsNodes(SoField const* field) {
  return field->isOfType(SoSFNode::getClassTypeId()) || field->isOfType(SoMFNode::getClassTypeId()) ||
         field->isOfType(SoMFUniformShaderParameter::getClassTypeId());
}

} // namespace

SoGraphTopologyManager::SoGraphTopologyManager(SoVantleTreeView* view)
    : m_timer(new QTimer(this)),
      m_sensor(graphTopologyChangedCB, this),
      m_view(view),
      m_references(view->getReferencedNodeManager()) {
  m_sensor.setPriority(0);
  m_sensor.setTriggerPathFlag(true);
  connect(m_timer, &QTimer::timeout, this, &SoGraphTopologyManager::updateTreeViewDisplay);
}

SoGraphTopologyManager::~SoGraphTopologyManager() = default;

void SoGraphTopologyManager::setRootNode(SoNode* root) {
  m_sensor.detach();
  if (root) m_sensor.attach(root);
}

void SoGraphTopologyManager::updateTreeViewDisplay() {
  m_timer->stop();
  m_view->viewport()->update();
}

void SoGraphTopologyManager::graphTopologyChangedCB(void* data, SoSensor* sensor) {
  if (!data || !sensor) return;
  auto* const manager = static_cast<SoGraphTopologyManager*>(data);
  auto* const trigger = static_cast<SoNodeSensor*>(sensor);
  // By far the most changes, thousands in a frame of a host: nothing may be done for them.
  SoField const* const changed = trigger->getTriggerField();
  if (trigger->getTriggerType() == SoNotification::UNSPECIFIED && changed && !holdsNodes(changed)) return;
  // The handlers may set off further changes, which use the same sensor.
  SoRef<SoPath> const path(trigger->getTriggerPath());
  SoNode* const node = trigger->getTriggerNode();
  SoNode* const child = trigger->getTriggerChild();
  int const index = trigger->getTriggerChildIndex();
  switch (trigger->getTriggerType()) {
    case SoNotification::UNSPECIFIED:
      manager->unspecified(node, trigger->getTriggerField(), path);
      return;
    case SoNotification::CHILD_ADDED:
      manager->groupAddChild(node, child, index, path);
      return;
    case SoNotification::CHILD_INSERTED:
      manager->groupInsertChild(node, child, index, path);
      return;
    case SoNotification::CHILD_REPLACED:
      manager->replaceChild(node, child, path);
      return;
    case SoNotification::CHILD_REMOVED:
      manager->groupRemoveChild(node, index, path);
      return;
    case SoNotification::ALL_CHILDREN_REMOVED:
      manager->groupRemoveAllChildren(node, path);
      return;
  }
}

void SoGraphTopologyManager::groupAddChild(SoNode* group, SoNode* child, int index, SoPath* path) {
  if (group == getRootNode()) {
    m_view->initTree(child);
  } else if (!insertMissing(group, path)) {
    setItemsToTree(group, child, index);
    updateTreeViewDisplay();
  }
}

void SoGraphTopologyManager::groupInsertChild(SoNode* group, SoNode* child, int index, SoPath* path) {
  groupAddChild(group, child, index, path);
}

void SoGraphTopologyManager::replaceChild(SoNode* group, SoNode* child, SoPath* path) {
  if (group == getRootNode()) {
    m_view->initTree(child);
  } else if (!insertMissing(group, path)) {
    for (SoTreeViewItem* row : m_references->rowsOf(group)) m_view->updateItemChildren(row);
    refresh(path);
  }
}

void SoGraphTopologyManager::groupRemoveChild(SoNode* group, int index, SoPath* path) {
  if (!group || group == getRootNode()) {
    m_view->initTree(nullptr);
    return;
  }
  takeItemsFromTree(group, index);
  refresh(path);
}

void SoGraphTopologyManager::groupRemoveAllChildren(SoNode* group, SoPath* path) {
  if (group == getRootNode()) {
    m_view->initTree(nullptr);
    return;
  }
  // The rows of the group itself stay, with all they have.
  for (SoTreeViewItem* row : m_references->rowsOf(group)) m_view->updateItemChildren(row);
  refresh(path);
}

/// For a change at a node that has no rows: brings the rows of the deepest node above it that has some in
/// line. False when the node has rows.
bool SoGraphTopologyManager::insertMissing(SoNode* group, SoPath* path) {
  if (m_references->findItem(group)) return false;
  if (!path) return true;
  SoNode* missing = nullptr;
  int index = -1;
  if (SoTreeViewItem* deepest = m_view->getFirstExistingItemFromPath(path, missing, index))
    redrawItemChildrens(deepest->getNode());
  return true;
}

void SoGraphTopologyManager::setItemsToTree(SoNode* parent, SoNode* child, int index) {
  SoChildList const* const children = parent->getChildren();
  int const count = children ? children->getLength() : 0;
  for (SoTreeViewItem* row : m_references->rowsOf(parent)) {
    // The usual case first. A change made inside this change, or rows that were ignored, make the numbers
    // differ.
    bool const simple = row->childCount() == row->childCount(false) && row->childCount() + 1 == count &&
                        index >= 0 && index < count && (*children)[index] == child &&
                        parent->isOfType(SoGroup::getClassTypeId());
    if (simple) {
      m_view->insertItem(child, row, nullptr, index);
    } else {
      m_view->updateItemChildren(row);
    }
  }
}

void SoGraphTopologyManager::takeItemsFromTree(SoNode* parent, int index) {
  SoChildList const* const children = parent->getChildren();
  int const count = children ? children->getLength() : 0;
  for (SoTreeViewItem* row : m_references->rowsOf(parent)) {
    bool const simple = row->childCount() == row->childCount(false) && row->childCount() == count + 1 &&
                        index >= 0 && index <= count &&
                        (index == count || row->rawChild(index)->getNode() != (*children)[index]);
    if (simple) {
      m_view->deleteRows(row, index, 1);
    } else {
      m_view->updateItemChildren(row);
    }
  }
}

void SoGraphTopologyManager::redrawItemChildrens(SoNode* node) {
  bool changed = false;
  for (SoTreeViewItem* row : m_references->rowsOf(node)) changed |= m_view->updateItemChildren(row);
  if (!changed) return;
  if (SoTreeViewItem* row = m_references->findItem(node)) m_view->refreshItem(row);
}

void SoGraphTopologyManager::unspecified(SoNode* node, SoField* field, SoPath* path) {
  if (!node || node == getRootNode()) return;
  bool const external =
      node->isOfType(SoFile::getClassTypeId()) || node->isOfType(SoWWWInline::getClassTypeId());
  if (external) {
    if (!field) updateExternalSceneTopology(node);
    return;
  }
  if (node->isOfType(SoGroup::getClassTypeId())) return;
  if (!insertMissing(node, path)) redrawItemChildrens(node);
  if (!node->isOfType(SoBaseKit::getClassTypeId())) return;
  // A kit arranges its parts below each other without a word of its own about each.
  auto const* kit = static_cast<SoBaseKit*>(node);
  SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
  for (int i = 1; i < catalog.getNumEntries(); ++i) {
    auto const* part = static_cast<SoSFNode const*>(kit->getField(catalog.getName(i)));
    if (part && part->getValue()) redrawItemChildrens(part->getValue());
  }
}

void SoGraphTopologyManager::updateExternalSceneTopology(SoNode* node) {
  for (SoTreeViewItem* row : m_references->rowsOf(node)) row->rebuildExternalSceneTopology(node);
  // Commands may refer to rows that are gone.
  if (VntServicesImpl::isInstance()) {
    VntServicesImpl::getImplInstance()->getCommandManager()->clearUndoCommands();
  }
  m_view->viewport()->update();
}

void SoGraphTopologyManager::insertItemsFromField(SoNode* child, SoNode* parent, int index, SoField* field) {
  if (!child || !parent || !field) return;
  // The field may have told of its change already.
  redrawItemChildrens(parent);
  for (SoTreeViewItem* row : m_references->rowsOf(parent)) {
    bool listed = false;
    for (int i = 0, n = row->childCount(); i < n && !listed; ++i) {
      listed = row->rawChild(i)->getNode() == child && row->rawChild(i)->getFieldParent() == field;
    }
    if (!listed) m_view->insertItem(child, row, field, index);
  }
}

void SoGraphTopologyManager::removeItemsFromField(SoNode* parent, SoNode* child, int index) {
  for (SoTreeViewItem* row : m_references->rowsOf(parent)) {
    SoTreeViewItem* const item = row->child(index);
    if (item && item->getNode() == child && item->fromField() && !item->isIgnored()) delete item;
  }
}

void SoGraphTopologyManager::refresh(SoPath* path) {
  SoTreeViewItem* const current = m_view->currentItem();
  if (path && current && path->containsNode(current->getNode())) m_view->refreshItem(current);
  m_view->viewport()->update();
}
