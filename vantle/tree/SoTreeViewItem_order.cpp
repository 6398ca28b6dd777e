#include <vector>

#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// Places of rows: neighbours, numbers, order.

SoTreeViewItem* SoTreeViewItem::child(int index) const {
  if (!m_hasRowsOutOfScene) return rawChild(index);
  SoVantleTreeView const* const view = listView();
  if (view && view->isLoading()) return rawChild(index);
  for (int i = 0, n = childCount(); i < n; ++i) {
    SoTreeViewItem* const item = rawChild(i);
    if (item->m_inSceneGraph && index-- == 0) return item;
  }
  return nullptr;
}

int SoTreeViewItem::childCount(bool all) const {
  int count = childCount();
  if (all || !m_hasRowsOutOfScene) return count;
  for (int i = childCount(); i-- > 0;) count -= rawChild(i)->m_ignored;
  return count;
}

int SoTreeViewItem::row() const {
  SoTreeViewItem const* const above = parent();
  if (!above) return treeWidget() ? treeWidget()->indexOfTopLevelItem(const_cast<SoTreeViewItem*>(this)) : -1;
  // The scene index is the place, except for rows out of the scene and while numbers are put off.
  if (above->rawChild(m_sceneIndex) == this) return m_sceneIndex;
  if (m_inSceneGraph && !above->m_childrenNumbered) above->numberChildren();
  if (above->rawChild(m_sceneIndex) == this) return m_sceneIndex;
  return above->indexOfChild(const_cast<SoTreeViewItem*>(this));
}

SoTreeViewItem* SoTreeViewItem::nextSibling() const {
  if (SoTreeViewItem const* const above = parent()) return above->rawChild(row() + 1);
  return treeWidget() ? static_cast<SoTreeViewItem*>(treeWidget()->topLevelItem(row() + 1)) : nullptr;
}

SoTreeViewItem* SoTreeViewItem::previousSibling() const {
  if (SoTreeViewItem const* const above = parent()) return above->rawChild(row() - 1);
  return treeWidget() ? static_cast<SoTreeViewItem*>(treeWidget()->topLevelItem(row() - 1)) : nullptr;
}

bool SoTreeViewItem::childExist(SoNode* node, SoField* field, bool& ignored, int from) const {
  SoTreeViewItem* item = from < 0 ? rawChild(childCount(false)) : child(from);
  for (; item; item = item->nextSibling()) {
    if (item->m_node == node && item->m_field == field) {
      ignored = item->m_ignored;
      return true;
    }
    if (!item->m_inSceneGraph) break;
  }
  return false;
}

bool SoTreeViewItem::isParent(SoTreeViewItem const* other) const {
  for (SoTreeViewItem const* above = other->parent(); above; above = above->parent()) {
    if (above->m_node == m_node) return true;
  }
  return false;
}

void SoTreeViewItem::getListPathFromRoot(QList<SoTreeViewItem*>& list) {
  list.clear();
  for (SoTreeViewItem* item = this; item; item = item->parent()) list.append(item);
  std::reverse(list.begin(), list.end());
}

int SoTreeViewItem::compareTo(SoTreeViewItem const& other) const {
  SoTreeViewItem const* a = this;
  SoTreeViewItem const* b = &other;
  while (a->parent() != b->parent()) {
    a = a->parent();
    b = b->parent();
    if (!a || !b) return 0;
  }
  return a->getSceneIndex() - b->getSceneIndex();
}

bool SoTreeViewItem::isAbove(SoTreeViewItem const* a, SoTreeViewItem const* b) {
  auto depthOf = [](SoTreeViewItem const* item) {
    int depth = 0;
    while ((item = item->parent())) ++depth;
    return depth;
  };
  int const depthA = depthOf(a), depthB = depthOf(b);
  SoTreeViewItem const* upA = a;
  SoTreeViewItem const* upB = b;
  for (int d = depthA; d > depthB; --d) upA = upA->parent();
  for (int d = depthB; d > depthA; --d) upB = upB->parent();
  if (upA == upB) return depthA < depthB;
  while (upA->parent() != upB->parent()) {
    upA = upA->parent();
    upB = upB->parent();
  }
  return upA->row() < upB->row();
}

int SoTreeViewItem::getSceneIndex() const {
  SoTreeViewItem const* const above = parent();
  if (above && !above->m_childrenNumbered) above->numberChildren();
  return m_sceneIndex;
}

void SoTreeViewItem::setSceneIndex(int index) {
  getSceneIndex(); // numbers that are still due do not overwrite this one later
  m_sceneIndex = index;
}

void SoTreeViewItem::numberChildren() const {
  SoVantleTreeView const* const view = listView();
  if (view && view->isLoading()) return;
  m_childrenNumbered = true;
  for (int i = 0, n = childCount(); i < n; ++i) {
    // A row out of the scene keeps its number but takes one up.
    if (SoTreeViewItem* const item = rawChild(i); item->m_inSceneGraph) item->m_sceneIndex = i;
  }
}

void SoTreeViewItem::generateSceneIndex() { numberChildren(); }

void SoTreeViewItem::setIgnoreFlag(bool on) {
  setIsInSceneGraph(!on);
  m_ignored = on;
  emitDataChanged();
}

void SoTreeViewItem::setIsInSceneGraph(bool on) {
  SoTreeViewItem* const above = parent();
  if (above) {
    getSceneIndex();
    if (on) {
      above->sceneIndicesChanged();
    } else {
      above->m_hasRowsOutOfScene = true;
    }
  }
  m_inSceneGraph = on;
  if (!on) m_sceneIndex = -1;
  generateSceneIndex();
}
