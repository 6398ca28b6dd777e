#include "kestrava/base/SoPath.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

// Between rows and paths of the scene graph.

namespace {

bool isInline(SoNode const* node) { return node->isOfType(SoWWWInline::getClassTypeId()); }

} // namespace

bool SoVantleTreeView::isPicking() {
  return SoVantleViewer::isInstance() && SoVantleViewer::getInstance()->getMode() == 1;
}

/// The root row when the path comes by its node; `position` is then where. Looks from there on.
SoTreeViewItem* SoVantleTreeView::rowOfRoot(SoPath const* path, int& position) const {
  SoTreeViewItem* const root = firstChild();
  if (!root || !path) return nullptr;
  for (position = std::max(0, position); position < path->getLength(); ++position) {
    if (path->getNode(position) == root->m_node) return root;
  }
  return nullptr;
}

SoTreeViewItem* SoVantleTreeView::childRowOf(SoTreeViewItem* row, SoNode* node, int index) const {
  if (index >= 0) {
    // The first child of an inline has no row.
    SoTreeViewItem* const there = row->child(isInline(row->m_node) ? index - 1 : index);
    if (there && there->m_node == node) return there;
    // Beside ignored rows the positions may differ.
    if (row->m_node->isOfType(SoGroup::getClassTypeId()) && !row->m_hasRowsOutOfScene) return nullptr;
  }
  for (int i = 0, n = row->childCount(); i < n; ++i) {
    SoTreeViewItem* const child = row->rawChild(i);
    if (child->m_node == node && child->m_inSceneGraph) return child;
  }
  return nullptr;
}

/// Builds what is not built on the way down a path.
void SoVantleTreeView::buildAlong(SoPath const* path) {
  if (m_unbuilt.empty()) return;
  SoNode* missing = nullptr;
  int index = -1;
  for (;;) {
    SoTreeViewItem* const row = getFirstExistingItemFromPath(path, missing, index);
    if (!row || !missing || !row->m_unbuilt) return;
    buildChildren(row);
  }
}

SoTreeViewItem* SoVantleTreeView::getItemFromPath(SoPath const* path, int from) {
  buildAlong(path);
  SoNode* missing = nullptr;
  int position = from - 1;
  if (!rowOfRoot(path, position)) return nullptr;
  int index = -1;
  SoTreeViewItem* const item = followPath(path, position, missing, index);
  return missing ? nullptr : item;
}

SoTreeViewItem* SoVantleTreeView::getFirstExistingItemFromPath(SoPath const* path, SoNode*& node,
                                                               int& index) const {
  int position = 0;
  node = nullptr;
  index = -1;
  return rowOfRoot(path, position) ? followPath(path, position, node, index) : nullptr;
}

/// From the root row, which shows the path's node at a position, as deep as rows exist.
SoTreeViewItem* SoVantleTreeView::followPath(SoPath const* path, int position, SoNode*& missing,
                                             int& index) const {
  SoTreeViewItem* row = firstChild();
  for (int i = position + 1; i < path->getLength(); ++i) {
    SoTreeViewItem* const next = childRowOf(row, path->getNode(i), path->getIndex(i));
    if (!next) {
      missing = path->getNode(i);
      index = path->getIndex(i);
      break;
    }
    row = next;
  }
  return row;
}

/// Where a row's node stands in the child list of the path's tail; -1 when it does not stand there.
int SoVantleTreeView::childPosition(SoTreeViewItem* row, SoNode* tail) const {
  SoChildList const* const children = tail->getChildren();
  if (!children) return -1;
  int const place = row->getSceneIndex() + (isInline(tail) ? 1 : 0);
  int const count = children->getLength();
  // Beside the expected place while a change is under way and the rows do not agree with the graph.
  for (int distance = 0;; ++distance) {
    for (int i : {place - distance, place + distance}) {
      if (i >= 0 && i < count && (*children)[i] == row->m_node) return i;
    }
    if (place - distance < 0 && place + distance >= count) break;
  }
  return -1;
}

SoPath* SoVantleTreeView::getPathFromItem(SoTreeViewItem* item) const {
  if (!item || !m_selection) return nullptr;
  auto* const path = new SoPath(m_selection);
  path->ref();
  QList<SoTreeViewItem*> rows;
  item->getListPathFromRoot(rows);
  for (SoTreeViewItem* row : rows) {
    if (row->getSceneIndex() < 0) break;
    int const index = childPosition(row, path->getTail());
    if (index >= 0) path->append(index);
  }
  return path;
}

void SoVantleTreeView::highlightPath(SoTreeViewItem* item) {
  // The root row is made current by every new scene: nobody wants to see that scene all marked.
  if (m_suppressHighlight || m_loading) return;
  SoPath* const path = getPathFromItem(item);
  if (!path) return;
  markPaths({SoRef<SoPath>(path)});
  path->unref();
  viewport()->update();
}

void SoVantleTreeView::markPaths(std::vector<SoRef<SoPath>> const& paths) {
  SoSelection* const selection = getGraphSelection();
  bool const isAllowed =
      !VntServicesImpl::isInstance() || VntServicesImpl::getImplInstance()->isSelectionAllowed();
  if (!selection || m_suppressHighlight || !isAllowed) return;
  // The selection answers with its callback, which is not to look for a row.
  bool const was = std::exchange(m_inSelectedPath, true);
  selection->deselectAll();
  for (auto const& path : paths) selection->select(path);
  m_inSelectedPath = was;
}

void SoVantleTreeView::showSelectedPath(void* view, SoPath* path) {
  if (view && path) static_cast<SoVantleTreeView*>(view)->showSelectedPath(path);
}

void SoVantleTreeView::showSelectedPath(SoPath* path) {
  if (m_inSelectedPath || isPicking()) return;
  m_inSelectedPath = true;
  SoVantleStateManager::setCurrentState(QStringLiteral("TreeViewState"));
  if (SoTreeViewItem* item = getItemFromPath(path, 0)) {
    showItem(item);
  } else {
    clearSelection();
  }
  m_inSelectedPath = false;
}
