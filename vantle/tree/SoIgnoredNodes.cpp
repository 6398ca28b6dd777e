#include "vantle/tree/SoIgnoredNodes.h"

#include <algorithm>

#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"

void SoIgnoredNodes::add(SoTreeViewItem const* row) {
  SoNode* const parent = row->getParentNode();
  rememberPlacesBelow(parent);
  auto entry = std::make_unique<Entry>();
  entry->parent = parent;
  entry->field = row->getFieldParent();
  entry->node = SoRef<SoNode>(row->getNode());
  entry->place = row->row();
  // Out of the graph nobody else tells of changes below the node.
  entry->below.setFunction(SoGraphTopologyManager::graphTopologyChangedCB);
  entry->below.setData(m_manager);
  entry->below.setPriority(0);
  entry->below.setTriggerPathFlag(true);
  entry->below.attach(entry->node);
  entry->parentSensor.setPriority(0);
  entry->parentSensor.setDeleteCallback(parentDies, this);
  entry->parentSensor.attach(parent);
  m_entries.push_back(std::move(entry));
}

/// The same node may stand several times below its parent: entries and ignored rows agree in their order.
SoIgnoredNodes::Entry* SoIgnoredNodes::find(SoTreeViewItem const* row) const {
  if (!row->isIgnored() || row->isInSceneGraph() || !row->parent()) return nullptr;
  int before = 0;
  for (int i = 0, n = row->row(); i < n; ++i) {
    SoTreeViewItem const* const other = row->parent()->rawChild(i);
    before += other->isIgnored() && other->getNode() == row->getNode() &&
              other->getFieldParent() == row->getFieldParent();
  }
  for (Entry* entry : below(row->getParentNode())) {
    if (entry->node.get() != row->getNode() || entry->field != row->getFieldParent()) continue;
    if (before-- == 0) return entry;
  }
  return nullptr;
}

void SoIgnoredNodes::remove(Entry* entry) {
  std::erase_if(m_entries, [entry](auto const& own) { return own.get() == entry; });
}

std::vector<SoIgnoredNodes::Entry*> SoIgnoredNodes::all() const {
  std::vector<Entry*> found;
  for (auto const& entry : m_entries) found.push_back(entry.get());
  return found;
}

std::vector<SoIgnoredNodes::Entry*> SoIgnoredNodes::below(SoNode const* parent) const {
  std::vector<Entry*> found = all();
  std::erase_if(found, [parent](Entry const* entry) { return entry->parent != parent; });
  std::stable_sort(found.begin(), found.end(), [](auto* a, auto* b) { return a->place < b->place; });
  return found;
}

void SoIgnoredNodes::parentDies(void* data, SoSensor* sensor) {
  auto* const nodes = static_cast<SoIgnoredNodes*>(data);
  auto const found = std::find_if(nodes->m_entries.begin(), nodes->m_entries.end(),
                                  [sensor](auto const& entry) { return &entry->parentSensor == sensor; });
  if (found == nodes->m_entries.end()) return;
  // The node may go with it, and with that others of the list.
  std::unique_ptr<Entry> const entry = std::move(*found);
  nodes->m_entries.erase(found);
}

void SoIgnoredNodes::rememberPlace(SoTreeViewItem const* row) {
  if (Entry* const entry = find(row)) entry->place = row->row();
}

void SoIgnoredNodes::rememberPlacesBelow(SoNode const* parent) {
  std::vector<Entry*> const entries = below(parent);
  if (entries.empty()) return;
  for (SoTreeViewItem const* row : m_references->rowsOf(parent)) {
    std::vector<int> places;
    for (int i = 0, n = row->childCount(); i < n; ++i) {
      if (row->rawChild(i)->isIgnored()) places.push_back(i);
    }
    // A row that is not built knows nothing.
    if (places.size() != entries.size()) continue;
    for (std::size_t i = 0; i < places.size(); ++i) entries[i]->place = places[i];
    return;
  }
}

void SoIgnoredNodes::rememberPlaces() {
  for (auto const& entry : m_entries) rememberPlacesBelow(entry->parent);
}
