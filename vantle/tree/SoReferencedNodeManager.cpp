#include "vantle/tree/SoReferencedNodeManager.h"

#include <algorithm>
#include <map>
#include <unordered_set>

#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoNodekitCatalog.h"
#include "vantle/tree/SoSortedItemList.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

QString keyOf(SoNode const* node) { return QString::number(reinterpret_cast<quintptr>(node)); }

} // namespace

SoReferencedNodeManager::SoReferencedNodeManager(SoVantleTreeView* view, SoNode* root)
    : m_root(root), m_search(std::make_unique<SoSearchAction>()), m_view(view) {}

SoReferencedNodeManager::~SoReferencedNodeManager() {
  clearNodeMap();
  reset();
}

bool SoReferencedNodeManager::belongsInNodeMap(SoTreeViewItem const* item) {
  return item->fromSubTreeField() && !item->baseKitPart();
}

void SoReferencedNodeManager::addItem(SoTreeViewItem* item) {
  if (!item || !item->getNode() || m_index.contains(item)) return;
  m_index.add(item);
  // A node whose references are shown shows further ones, too.
  if (!m_referenced.isEmpty() && m_referenced.contains(keyOf(item->getNode()))) item->m_showRef = true;
  addToNodeMap(item);
}

void SoReferencedNodeManager::addToNodeMap(SoTreeViewItem* item) {
  if (!belongsInNodeMap(item)) return;
  QString const key = keyOf(item->getNode());
  SoSortedItemList* list = m_nodeMap.value(key);
  if (!list) m_nodeMap.insert(key, list = new SoSortedItemList);
  list->addNew(item);
}

void SoReferencedNodeManager::removeItem(SoTreeViewItem* item) {
  if (!item) return;
  removeSubTreeFromMap(item);
  removeSingleItem(item);
}

void SoReferencedNodeManager::removeSubTreeFromMap(SoTreeViewItem* item) {
  std::vector<SoTreeViewItem*> below{item};
  for (std::size_t i = 0; i < below.size(); ++i) {
    for (int k = 0, n = below[i]->childCount(); k < n; ++k) below.push_back(below[i]->rawChild(k));
  }
  while (below.size() > 1) {
    removeSingleItem(below.back());
    below.pop_back();
  }
}

void SoReferencedNodeManager::removeSingleItem(SoTreeViewItem* item) {
  m_index.remove(item);
  ++m_removals;
  m_view->rowGoes(item);
  if (!m_referenced.isEmpty()) {
    QList<SoTreeViewItem*>* const list = m_referenced.value(keyOf(item->getNode()));
    if (list) list->removeOne(item);
    // The next node at this address is another one.
    if (list && !m_index.find(item->getNode())) removeReferencedList(item);
  }
  removeFromNodeMap(item);
}

void SoReferencedNodeManager::removeFromNodeMap(SoTreeViewItem* item) {
  if (m_nodeMap.isEmpty() || !belongsInNodeMap(item)) return;
  QString const key = keyOf(item->getNode());
  SoSortedItemList* const list = m_nodeMap.value(key);
  if (!list) return;
  list->removeRef(item);
  if (!list->isEmpty()) return;
  m_nodeMap.remove(key);
  delete list;
}

void SoReferencedNodeManager::renameParts(SoBaseKit* kit) {
  std::unordered_set<SoNode const*> parts;
  SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
  for (int i = 1; i < catalog.getNumEntries(); ++i) {
    auto const* part = static_cast<SoSFNode const*>(kit->getField(catalog.getName(i)));
    if (part && part->getValue()) parts.insert(part->getValue());
  }
  for (SoTreeViewItem* top : rowsOf(kit)) {
    std::vector<SoTreeViewItem*> below{top};
    while (!below.empty()) {
      SoTreeViewItem* const row = below.back();
      below.pop_back();
      for (int i = row->childCount(); i-- > 0;) {
        SoTreeViewItem* const child = row->rawChild(i);
        // Further kits name what is below them.
        if (child->getBaseKit() != kit) continue;
        below.push_back(child);
        SbName name;
        bool const isField = child->getFieldParent() && child->getFieldParent()->getContainer() == kit;
        bool const isEntry =
            row->parent() && row->parent()->getNode()->isOfType(SoNodeKitListPart::getClassTypeId());
        bool const concerned =
            !isField && (isEntry || child->baseKitPart() || parts.contains(child->getNode()));
        // One that is out of the scene has no place; it is named when it comes back.
        if (!concerned || !child->isInSceneGraph() || child->hasPartNameOf(name)) continue;
        removeFromNodeMap(child);
        *child->kitItem() = SoTreeViewItemPrivate::SoBaseKitItemPrivate(kit, name);
        addToNodeMap(child);
      }
    }
  }
}

void SoReferencedNodeManager::setReferencedList(SoTreeViewItem* item) {
  if (!item || item->getRefCount() < 2) return;
  QString const key = keyOf(item->getNode());
  if (!m_referenced.contains(key)) m_referenced.insert(key, new QList<SoTreeViewItem*>);
}

void SoReferencedNodeManager::removeReferencedList(SoTreeViewItem* item) {
  if (item) delete m_referenced.take(keyOf(item->getNode()));
}

QList<SoTreeViewItem*>* SoReferencedNodeManager::getAllReferencedItems(SoTreeViewItem* item) const {
  QList<SoTreeViewItem*>* const list = item ? m_referenced.value(keyOf(item->getNode())) : nullptr;
  if (!list) return nullptr;
  // Rows come, go and change places while the references are shown.
  list->clear();
  getAllItems(item->getNode(), *list);
  return list;
}

SoTreeViewItem* SoReferencedNodeManager::step(SoTreeViewItem* item, int direction) const {
  QList<SoTreeViewItem*> const* const list = getAllReferencedItems(item);
  if (!list || list->isEmpty()) return nullptr;
  auto const count = list->size();
  auto at = list->indexOf(item);
  if (at < 0 && direction < 0) at = 0;
  for (qsizetype tries = 0; tries < count; ++tries) {
    at = (at + direction + count) % count;
    SoTreeViewItem* const found = list->at(at);
    // What stands below an ignored row is disabled.
    if (found->listView() && found->isInSceneGraph() && (found->flags() & Qt::ItemIsEnabled)) return found;
  }
  return nullptr;
}

SoTreeViewItem* SoReferencedNodeManager::getNextRefItem(SoTreeViewItem* item) const { return step(item, 1); }
SoTreeViewItem* SoReferencedNodeManager::getPreviousRefItem(SoTreeViewItem* item) const {
  return step(item, -1);
}

void SoReferencedNodeManager::searchAllReferencedItems(SoNode* node, QList<SoTreeViewItem*>& list) {
  if (!node || !m_root) return;
  bool const searchedKits = SoBaseKit::isSearchingChildren();
  SoBaseKit::setSearchingChildren(true);
  m_search->setNode(node);
  m_search->setInterest(SoSearchAction::ALL);
  m_search->setSearchingAll(true);
  m_search->apply(m_root);
  SoSortedItemList found;
  for (auto const& path : m_search->getPaths()) {
    if (SoTreeViewItem* item = m_view->getItemFromPath(path, 0)) found.addRef(item);
  }
  found.toList(list);
  m_search->reset();
  SoBaseKit::setSearchingChildren(searchedKits);
}

void SoReferencedNodeManager::getAllItems(SoNode* node, QList<SoTreeViewItem*>& list) const {
  SoSortedItemList found;
  for (SoTreeViewItem* item : rowsOf(node)) found.addRef(item);
  found.toList(list);
}

QString SoReferencedNodeManager::familyKey(SoTreeViewItem const* item) {
  return keyOf(item->getParentNode()) + QStringLiteral("+%1").arg(item->getSceneIndex());
}

void SoReferencedNodeManager::searchItemFamilies(SoNode* node,
                                                 QList<QList<SoTreeViewItem*>*>& families) const {
  QList<SoTreeViewItem*> items;
  getAllItems(node, items);
  std::map<QString, QList<SoTreeViewItem*>*> byKey;
  for (SoTreeViewItem* item : items) {
    QList<SoTreeViewItem*>*& family = byKey[familyKey(item)];
    if (!family) families.append(family = new QList<SoTreeViewItem*>);
    family->append(item);
  }
}

void SoReferencedNodeManager::searchItemFamily(SoNode* node, SoNode* parent, int sceneIndex,
                                               QList<SoTreeViewItem*>& rows) const {
  QList<SoTreeViewItem*> items;
  getAllItems(node, items);
  for (SoTreeViewItem* item : items) {
    if (item->getParentNode() == parent && item->getSceneIndex() == sceneIndex) rows.append(item);
  }
}

void SoReferencedNodeManager::getDuplicatedItemsSets(SoTreeViewItem* item,
                                                     QList<QList<SoTreeViewItem*>*>& families) const {
  if (item) searchItemFamilies(item->getNode(), families);
}

void SoReferencedNodeManager::getDuplicatedItemsSets(SoNode* node,
                                                     QList<QList<SoTreeViewItem*>*>& families) const {
  searchItemFamilies(node, families);
}

void SoReferencedNodeManager::getDuplicatedItemsSet(SoTreeViewItem* item,
                                                    QList<SoTreeViewItem*>& rows) const {
  if (item) searchItemFamily(item->getNode(), item->getParentNode(), item->getSceneIndex(), rows);
}

void SoReferencedNodeManager::getDuplicatedItemsSet(SoNode* node, SoNode* parent, int sceneIndex,
                                                    QList<SoTreeViewItem*>& rows) const {
  searchItemFamily(node, parent, sceneIndex, rows);
}

int SoReferencedNodeManager::nodeMapCount(SoNode const* node) const {
  SoSortedItemList* const list = m_nodeMap.value(keyOf(node));
  if (!list) return 0;
  list->sortList();
  return list->count();
}

void SoReferencedNodeManager::clearNodeMap() {
  ++m_removals;
  qDeleteAll(m_nodeMap);
  m_nodeMap.clear();
  // The lists for walking would keep rows that go now.
  qDeleteAll(m_referenced);
  m_referenced.clear();
  m_index.clear();
}

void SoReferencedNodeManager::reset() {
  qDeleteAll(m_referenced);
  m_referenced.clear();
  m_search->reset();
}
