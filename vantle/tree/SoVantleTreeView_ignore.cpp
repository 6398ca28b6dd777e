#include <QMainWindow>
#include <QStatusBar>
#include <algorithm>
#include <vector>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/prefs/SoTreeViewState.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoIgnoredNodes.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vnt/QtText.h"

// Taking nodes out of the graph while their rows stay, and putting them back.

namespace {

constexpr int MESSAGE_TIME = 5000; // milliseconds

bool isExternal(SoNode const* node) {
  return node->isOfType(SoFile::getClassTypeId()) || node->isOfType(SoWWWInline::getClassTypeId());
}

SoMFNode* listOf(SoField* field) {
  bool const isList = field && (field->isOfType(SoMFNode::getClassTypeId()) ||
                                field->isOfType(SoMFUniformShaderParameter::getClassTypeId()));
  return isList ? static_cast<SoMFNode*>(field) : nullptr;
}

SoSFNode* singleOf(SoField* field) {
  return field && field->isOfType(SoSFNode::getClassTypeId()) ? static_cast<SoSFNode*>(field) : nullptr;
}

/// The nodes among which a child of a parent stands, empty entries included.
std::vector<SoNode*> siblingsOf(SoNode* parent, SoField* field) {
  std::vector<SoNode*> nodes;
  if (SoMFNode* const list = listOf(field)) {
    for (int i = 0; i < list->getNumValues(); ++i) nodes.push_back(list->getNode(i));
  } else if (SoSFNode* const single = singleOf(field)) {
    nodes.push_back(single->getValue());
  } else if (auto* const group = dynamic_cast<SoGroup*>(parent)) {
    for (int i = 0; i < group->getNumChildren(); ++i) nodes.push_back(group->getChild(i));
  }
  return nodes;
}

/// A row is in step with the graph: the how-many-th of its node among its neighbours it is, that one of the
/// graph it is, too. -1 when the graph has no such one.
int placeInGraph(SoTreeViewItem const* row) {
  int before = 0;
  SoTreeViewItem const* const above = row->parent();
  for (int i = 0, n = row->row(); i < n; ++i) {
    SoTreeViewItem const* const other = above->rawChild(i);
    before += other->isInSceneGraph() && other->getNode() == row->getNode() &&
              other->getFieldParent() == row->getFieldParent();
  }
  std::vector<SoNode*> const nodes = siblingsOf(above->getNode(), row->getFieldParent());
  for (int i = 0, n = static_cast<int>(nodes.size()); i < n; ++i) {
    if (nodes[i] == row->getNode() && before-- == 0) return i;
  }
  return -1;
}

/// Where a node belongs whose row is ignored: behind the one that its row stands behind.
int placeToReturn(SoTreeViewItem const* row) {
  for (int i = row->row(); i-- > 0;) {
    SoTreeViewItem const* const other = row->parent()->rawChild(i);
    if (!other->isInSceneGraph() || other->getFieldParent() != row->getFieldParent()) continue;
    int const place = placeInGraph(other);
    if (place >= 0) return place + 1;
  }
  return 0;
}

void removeAt(SoNode* parent, SoField* field, int place) {
  if (SoMFNode* const list = listOf(field)) {
    list->deleteValues(place, 1);
  } else if (SoSFNode* const single = singleOf(field)) {
    single->setValue(nullptr);
  } else {
    SoDB::writelock();
    static_cast<SoGroup*>(parent)->removeChild(place);
    SoDB::writeunlock();
  }
}

/// False when the parent does not take it: it would contain itself.
bool insertAt(SoNode* parent, SoField* field, SoNode* node, int place) {
  auto const count = siblingsOf(parent, field).size();
  place = std::clamp(place, 0, static_cast<int>(count));
  if (SoMFNode* const list = listOf(field)) {
    list->insertNode(node, place);
  } else if (SoSFNode* const single = singleOf(field)) {
    single->setValue(node);
    return single->getValue() == node;
  } else {
    SoDB::writelock();
    static_cast<SoGroup*>(parent)->insertChild(node, place);
    SoDB::writeunlock();
  }
  return siblingsOf(parent, field).size() == count + 1;
}

QString nodeText(SoNode const* node) {
  QString text = toQString(node->getTypeId().getName().toString());
  if (!node->getName().empty()) text += QStringLiteral(" \"%1\"").arg(toQString(node->getName().toString()));
  return text;
}

/// Of equal ones among the ignored children of a row, which one this is.
int ordinalOf(SoTreeViewItem const* row) {
  int before = 0;
  for (int i = 0, n = row->row(); i < n; ++i) {
    SoTreeViewItem const* const other = row->parent()->rawChild(i);
    before += other->isIgnored() && other->getNode() == row->getNode() &&
              other->getFieldParent() == row->getFieldParent();
  }
  return before;
}

/// Whether a row or one above it is ignored.
bool isBelowIgnored(SoTreeViewItem const* row) {
  while (row && !row->isIgnored()) row = row->parent();
  return row;
}

SoTreeViewItem* ignoredChild(SoTreeViewItem const* above, SoNode const* node, SoField const* field,
                             int ordinal) {
  for (int i = 0, n = above->childCount(); i < n; ++i) {
    SoTreeViewItem* const child = above->rawChild(i);
    if (child->isIgnored() && child->getNode() == node && child->getFieldParent() == field && ordinal-- == 0)
      return child;
  }
  return nullptr;
}

} // namespace

void SoVantleTreeView::itemStateChanged(bool enable, SoTreeViewItem* item) {
  if (!item) return;
  QString const reason = enable ? whyNotEnabled(item) : whyNotIgnored(item);
  QString text = nodeText(item->getNode());
  if (!reason.isEmpty()) {
    text = reason.arg(text);
  } else if (changeSceneItemState(enable, item)) {
    text = enable ? tr("%1 is back in the scene graph.").arg(text)
                  : tr("%1 is taken out of the scene graph until it is enabled again.").arg(text);
  } else {
    text = tr("The node above does not take %1 back: it stands below it now.").arg(text);
  }
  if (VntShellImpl::isInstance())
    VntShellImpl::getImplInstance()->getMainFrame()->statusBar()->showMessage(text, MESSAGE_TIME);
  if (m_state) m_state->updateItemTreeViewAction(currentItem(), nullptr);
}

/// Empty when it can be done; %1 is the node.
QString SoVantleTreeView::whyNotIgnored(SoTreeViewItem const* item) {
  SoTreeViewItem const* const above = item->parent();
  SoField* const field = item->getFieldParent();
  if (item->isIgnored()) return tr("%1 is ignored already.");
  if (!above) return tr("%1 can not be ignored: it is the root of the scene.");
  if (item->baseKitPart()) return tr("%1 can not be ignored: it is a part of a node kit.");
  if (isExternal(item->getNode())) return tr("%1 can not be ignored: its children come from a file.");
  if (!(item->flags() & Qt::ItemIsEnabled))
    return tr("%1 can not be ignored: it stands below an ignored node.");
  if (field && !listOf(field) && !singleOf(field))
    return tr("%1 can not be ignored: its field can not be emptied.");
  if (field && field->isConnected()) return tr("%1 can not be ignored: its field is connected.");
  if (!field && isExternal(above->getNode())) return tr("%1 can not be ignored: it comes from a file.");
  if (!field && !above->getNode()->isOfType(SoGroup::getClassTypeId()))
    return tr("%1 can not be ignored: the node above is no group.");
  return QString();
}

QString SoVantleTreeView::whyNotEnabled(SoTreeViewItem const* item) {
  if (!item->isIgnored()) return tr("%1 is not ignored.");
  SoField* const field = item->getFieldParent();
  if (field && field->isConnected()) return tr("%1 can not be enabled: its field is connected now.");
  SoSFNode const* const single = singleOf(field);
  if (single && single->getValue() && single->getValue() != item->getNode())
    return tr("%1 can not be enabled: its field holds another node now.");
  return QString();
}

bool SoVantleTreeView::changeSceneItemState(bool enable, SoTreeViewItem* item) {
  if (!item || !(enable ? whyNotEnabled(item) : whyNotIgnored(item)).isEmpty()) return false;
  return enable ? putBack(item) : takeOut(item);
}

bool SoVantleTreeView::takeOut(SoTreeViewItem* item) {
  SoNode* const parent = item->getParentNode();
  SoField* const field = item->m_field;
  int const place = placeInGraph(item);
  if (place < 0) return false;
  SoRef<SoNode> const node(item->m_node);
  m_topology->ignoredNodes().add(item);
  int const at = item->row();
  // The same child at every place of its parent.
  for (SoTreeViewItem* above : m_references->rowsOf(parent)) {
    SoTreeViewItem* const row = above->rawChild(at);
    if (!row || row->m_node != node.get() || row->m_field != field) continue;
    row->setIgnoreFlag(true);
    setSubTreeEnable(row, false);
  }
  removeAt(parent, field, place);
  viewport()->update();
  return true;
}

bool SoVantleTreeView::putBack(SoTreeViewItem* item) {
  SoIgnoredNodes& nodes = m_topology->ignoredNodes();
  SoIgnoredNodes::Entry* const entry = nodes.find(item);
  if (!entry) return false;
  SoRef<SoNode> const parent(entry->parent);
  SoRef<SoNode> const node(entry->node);
  SoField* const field = entry->field;
  int const ordinal = ordinalOf(item);
  // Somebody else may have brought it back; then it has no row yet but this one.
  std::vector<SoNode*> const siblings = siblingsOf(parent, field);
  auto inGraph = std::count(siblings.begin(), siblings.end(), node.get());
  for (int i = 0, n = item->parent()->childCount(); i < n; ++i) {
    SoTreeViewItem const* const row = item->parent()->rawChild(i);
    inGraph -= row->m_inSceneGraph && row->m_node == node.get() && row->m_field == field;
  }
  if (inGraph <= 0 && !insertAt(parent, field, node, placeToReturn(item))) return false;
  std::vector<SoTreeViewItem*> restored;
  // The change may have had consequences.
  for (SoTreeViewItem* above : m_references->rowsOf(parent)) {
    SoTreeViewItem* const row = ignoredChild(above, node, field, ordinal);
    if (!row) continue;
    row->setIgnoreFlag(false);
    setSubTreeEnable(row, true);
    restored.push_back(row);
  }
  std::vector<SoIgnoredNodes::Entry*> const left = nodes.all();
  if (std::find(left.begin(), left.end(), entry) != left.end()) nodes.remove(entry);
  unsigned const removals = m_references->removals();
  for (SoTreeViewItem* row : restored) {
    if (removals == m_references->removals()) restoreIgnoredBelow(row);
  }
  m_topology->redrawItemChildrens(parent);
  if (SoTreeViewItem const* row = m_references->findItem(node); row && row->getBaseKit())
    m_references->renameParts(row->getBaseKit());
  viewport()->update();
  return true;
}

void SoVantleTreeView::setSubTreeEnable(SoTreeViewItem* item, bool enable) {
  // What is below those follows by itself, except below a row that is ignored on its own.
  for (int i = 0, n = item->childCount(); i < n; ++i) item->rawChild(i)->setDisabled(!enable);
}

/// The ignored rows below a row that has none of them yet and stands, or is to stand, below `above`. Not
/// below an ignored row: out of the graph anything may have come below anything, and they come when that row
/// is enabled.
void SoVantleTreeView::restoreIgnoredRows(SoTreeViewItem* row, SoTreeViewItem const* above) {
  if (m_topology->ignoredNodes().isEmpty() || isBelowIgnored(row) || isBelowIgnored(above)) return;
  for (SoIgnoredNodes::Entry const* entry : m_topology->ignoredNodes().below(row->m_node)) {
    auto* const added = new SoTreeViewItem(entry->node, entry->field, row, entry->place,
                                           row->parent() ? row->parent() : above);
    m_references->addItem(added);
    row->insertChild(std::min(entry->place, row->childCount()), added);
    row->sceneIndicesChanged();
    added->setIgnoreFlag(true);
    buildBelow(added, above);
    setSubTreeEnable(added, false);
  }
}

/// For a row that is not ignored any more.
void SoVantleTreeView::restoreIgnoredBelow(SoTreeViewItem* top) {
  if (m_topology->ignoredNodes().isEmpty()) return;
  std::vector<SoTreeViewItem*> rows{top};
  while (!rows.empty()) {
    SoTreeViewItem* const row = rows.back();
    rows.pop_back();
    bool hasAny = false;
    for (int i = row->childCount(); i-- > 0;) {
      SoTreeViewItem* const child = row->rawChild(i);
      hasAny |= child->m_ignored;
      if (!child->m_ignored) rows.push_back(child);
    }
    if (!hasAny && !row->m_unbuilt) restoreIgnoredRows(row, nullptr);
  }
  markFiltered(top);
}

QStringList SoVantleTreeView::ignoredBelow(SoNode* node) const {
  QStringList found;
  for (SoIgnoredNodes::Entry const* entry : m_topology->ignoredNodes().all()) {
    for (SoTreeViewItem const* row : m_references->rowsOf(entry->parent)) {
      while (row && row->m_node != node) row = row->parent();
      if (!row) continue;
      found << nodeText(entry->node);
      break;
    }
  }
  return found;
}

void SoVantleTreeView::enableAll() {
  SoIgnoredNodes& nodes = m_topology->ignoredNodes();
  auto const rowOf = [&](SoIgnoredNodes::Entry const* entry) -> SoTreeViewItem* {
    for (SoTreeViewItem* above : m_references->rowsOf(entry->parent)) {
      for (int i = 0, n = above->childCount(); i < n; ++i) {
        if (nodes.find(above->rawChild(i)) == entry) return above->rawChild(i);
      }
    }
    return nullptr;
  };
  while (!nodes.isEmpty()) {
    SoIgnoredNodes::Entry* const entry = nodes.all().back();
    SoRef<SoNode> const parent(entry->parent);
    SoTreeViewItem* row = rowOf(entry);
    if (row && changeSceneItemState(true, row)) continue;
    // The place where it belongs has no row, or is taken by now.
    SoSFNode const* const single = singleOf(entry->field);
    if (!row && !(single && single->getValue())) insertAt(parent, entry->field, entry->node, entry->place);
    while ((row = rowOf(entry))) delete row;
    nodes.remove(entry);
    m_topology->redrawItemChildrens(parent);
  }
}
