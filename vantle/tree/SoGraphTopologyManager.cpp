#include "vantle/tree/SoGraphTopologyManager.h"

#include <QThread>
#include <unordered_set>

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
      m_references(view->getReferencedNodeManager()),
      m_ignored(this, m_references) {
  m_sensor.setPriority(0);
  m_sensor.setTriggerPathFlag(true);
  connect(m_timer, &QTimer::timeout, this, &SoGraphTopologyManager::updateTreeViewDisplay);
  SoNode::addDestroyedCallback(nodeIsDestroyed, this);
}

SoGraphTopologyManager::~SoGraphTopologyManager() { SoNode::removeDestroyedCallback(nodeIsDestroyed, this); }

/// Rows do not keep their nodes. One goes while it has rows when it was taken out of the graph with notification
/// switched off.
void SoGraphTopologyManager::nodeIsDestroyed(void* data, SoNode const* node) {
  auto* const manager = static_cast<SoGraphTopologyManager*>(data);
  if (manager->thread() != QThread::currentThread() || !manager->m_references->findItem(node)) return;
  // What holds the node may be going, too: nothing is asked of the rows around it, as a new current row would be.
  QSignalBlocker const quiet(manager->m_view);
  SoTreeViewItem const* row = manager->m_view->currentItem();
  while (row && row->getNode() != node) row = row->parent();
  if (row) manager->m_view->setCurrentItem(nullptr);
  while (SoTreeViewItem* const gone = manager->m_references->findItem(node)) {
    ++manager->m_changes;
    delete gone;
  }
}

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
  ++manager->m_changes;
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

bool SoGraphTopologyManager::isScene(SoNode* node) const {
  auto const* const root = dynamic_cast<SoGroup const*>(getRootNode());
  return root && root->findChild(node) >= 0;
}

/// The scene below the watched node is another one. Who heard of that earlier may have changed it once more.
void SoGraphTopologyManager::showScene(SoNode* scene) {
  auto const* const root = dynamic_cast<SoGroup const*>(getRootNode());
  if (root && root->findChild(scene) < 0) scene = root->getNumChildren() > 0 ? root->getChild(0) : nullptr;
  SoTreeViewItem const* const shown = m_view->firstChild();
  if (shown && scene && shown->getNode() == scene) return;
  // Everything is built from the graph as it is now.
  m_silentChanges = SoFieldContainer::getSilentChanges();
  m_view->initTree(scene);
}

void SoGraphTopologyManager::groupAddChild(SoNode* group, SoNode* child, int index, SoPath* path) {
  if (group == getRootNode()) {
    showScene(child);
  } else if (!insertMissing(group, path)) {
    setItemsToTree(group, child, index);
    updateTreeViewDisplay();
  }
}

void SoGraphTopologyManager::groupInsertChild(SoNode* group, SoNode* child, int index, SoPath* path) {
  groupAddChild(group, child, index, path);
}

/// Changes every row of a node. Who hears of what the rows do may change the graph in turn: then all rows that there
/// are now are brought in line instead. True when something had to be changed.
template <typename Change>
bool SoGraphTopologyManager::forRowsOf(SoNode* node, Change change) {
  std::unordered_set<SoTreeViewItem*> done;
  bool changed = false, isNested = false;
  for (bool again = true; again;) {
    again = false;
    for (SoTreeViewItem* row : m_references->rowsOf(node)) {
      if (!done.insert(row).second) continue;
      unsigned const changes = m_changes, removals = m_references->removals();
      changed |= isNested ? m_view->updateItemChildren(row) : change(row);
      again = changes != m_changes;
      if (again) {
        isNested = true;
        done.clear();
        break;
      }
      // Below an ignored row the node of a row above may stand once more, and be gone now.
      again = removals != m_references->removals() && !m_ignored.isEmpty();
      if (again) break;
    }
  }
  return changed;
}

void SoGraphTopologyManager::replaceChild(SoNode* group, SoNode* child, SoPath* path) {
  if (group == getRootNode()) {
    showScene(child);
  } else if (!insertMissing(group, path)) {
    redrawItemChildrens(group);
    refresh(path);
  }
}

void SoGraphTopologyManager::groupRemoveChild(SoNode* group, int index, SoPath* path) {
  if (!group || group == getRootNode()) {
    // Unless another one has come inside of this change.
    SoTreeViewItem const* const shown = m_view->firstChild();
    if (!shown || !isScene(shown->getNode())) m_view->initTree(nullptr);
    return;
  }
  takeItemsFromTree(group, index);
  refresh(path);
}

void SoGraphTopologyManager::groupRemoveAllChildren(SoNode* group, SoPath* path) {
  if (group == getRootNode()) {
    showScene(nullptr);
    return;
  }
  // The rows of the group itself stay, with all they have.
  redrawItemChildrens(group);
  refresh(path);
}

/// For a change at a node that has no rows: brings the rows of the deepest node above it that has some in
/// line. False when the node has rows.
bool SoGraphTopologyManager::insertMissing(SoNode* group, SoPath* path) {
  if (m_references->findItem(group)) return false;
  for (int i = path ? path->getLength() : 0; i-- > 0;) {
    if (!m_references->findItem(path->getNode(i))) continue;
    redrawItemChildrens(path->getNode(i));
    break;
  }
  return true;
}

void SoGraphTopologyManager::setItemsToTree(SoNode* parent, SoNode* child, int index) {
  SoChildList const* const children = parent->getChildren();
  int const count = children ? children->getLength() : 0;
  forRowsOf(parent, [=, this](SoTreeViewItem* row) {
    // The usual case first. A change made inside this change, or rows that were ignored, make the numbers
    // differ.
    bool const simple = !row->isUnbuilt() && row->childCount() == row->childCount(false) &&
                        row->childCount() + 1 == count && index >= 0 && index < count &&
                        (*children)[index] == child && parent->isOfType(SoGroup::getClassTypeId());
    if (!simple) return m_view->updateItemChildren(row);
    m_view->insertItem(child, row, nullptr, index);
    return true;
  });
}

void SoGraphTopologyManager::takeItemsFromTree(SoNode* parent, int index) {
  SoChildList const* const children = parent->getChildren();
  int const count = children ? children->getLength() : 0;
  forRowsOf(parent, [=, this](SoTreeViewItem* row) {
    bool const simple = !row->isUnbuilt() && row->childCount() == row->childCount(false) &&
                        row->childCount() == count + 1 && index >= 0 && index <= count &&
                        (index == count || row->rawChild(index)->getNode() != (*children)[index]);
    if (!simple) return m_view->updateItemChildren(row);
    m_view->deleteRows(row, index, 1);
    return true;
  });
}

void SoGraphTopologyManager::redrawItemChildrens(SoNode* node) {
  bool const changed = forRowsOf(node, [this](SoTreeViewItem* row) { return m_view->updateItemChildren(row); });
  if (!changed) return;
  if (SoTreeViewItem* row = m_references->findItem(node)) m_view->refreshItem(row);
}

/// Brings all rows below those of a node in line with the graph.
void SoGraphTopologyManager::redrawAllBelow(SoNode* node) {
  std::uint64_t const silent = SoFieldContainer::getSilentChanges();
  if (silent == m_silentChanges) return;
  SoTreeViewItem const* const top = m_view->firstChild();
  SoNode* const scene = top ? top->getNode() : nullptr;
  bool const isAll = node == getRootNode() || node == scene;
  std::vector<SoNode*> nodes{isAll ? scene : node};
  std::unordered_set<SoNode*> known(nodes.begin(), nodes.end());
  // Each node once: all its rows are changed together.
  while (!nodes.empty()) {
    SoNode* const next = nodes.back();
    nodes.pop_back();
    if (!m_references->findItem(next)) continue;
    redrawItemChildrens(next);
    SoTreeViewItem const* const row = m_references->findItem(next);
    for (int i = 0, n = row ? row->childCount() : 0; i < n; ++i) {
      if (known.insert(row->rawChild(i)->getNode()).second) nodes.push_back(row->rawChild(i)->getNode());
    }
  }
  if (isAll) m_silentChanges = silent;
}

void SoGraphTopologyManager::unspecified(SoNode* node, SoField* field, SoPath* path) {
  if (!node) return;
  if (node == getRootNode()) {
    if (!field) redrawAllBelow(node);
    return;
  }
  bool const external =
      node->isOfType(SoFile::getClassTypeId()) || node->isOfType(SoWWWInline::getClassTypeId());
  if (external) {
    if (!field) updateExternalSceneTopology(node);
    // What such a node does to its hidden children it does without a word.
    if (field && SoVantleTreeView::isShowingInternalChildren()) redrawAllBelow(node);
    return;
  }
  // Whoever changed a graph with notification switched off touches it afterwards.
  if (!field && m_silentChanges != SoFieldContainer::getSilentChanges()) redrawAllBelow(node);
  if (node->isOfType(SoGroup::getClassTypeId())) return;
  if (!insertMissing(node, path)) redrawItemChildrens(node);
  if (!node->isOfType(SoBaseKit::getClassTypeId())) return;
  // A kit arranges its parts below each other without a word of its own about each.
  auto* const kit = static_cast<SoBaseKit*>(node);
  SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
  for (int i = 1; i < catalog.getNumEntries(); ++i) {
    auto const* part = static_cast<SoSFNode const*>(kit->getField(catalog.getName(i)));
    if (part && part->getValue()) redrawItemChildrens(part->getValue());
  }
  m_references->renameParts(kit);
}

void SoGraphTopologyManager::updateExternalSceneTopology(SoNode* node) {
  forRowsOf(node, [node](SoTreeViewItem* row) {
    row->rebuildExternalSceneTopology(node);
    return true;
  });
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
