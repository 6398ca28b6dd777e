#include "vantle/tree/SoNodeRowIndex.h"

#include <cstdint>

#include "vantle/tree/SoTreeViewItem.h"

namespace {

/// Addresses differ in their middle bits; the multiplication spreads them over the upper ones.
std::size_t hashOf(SoNode const* node) {
  auto const bits = reinterpret_cast<std::uintptr_t>(node) >> 4;
  return static_cast<std::size_t>((bits * 0x9E3779B97F4A7C15ull) >> 20);
}

} // namespace

/// The slot that leads to a node's rows, or the empty one where it would stand.
std::size_t SoNodeRowIndex::slotOf(SoNode const* node) const {
  std::size_t const mask = m_table.size() - 1;
  std::size_t slot = hashOf(node) & mask;
  while (m_table[slot] && m_table[slot]->m_node != node) slot = (slot + 1) & mask;
  return slot;
}

void SoNodeRowIndex::grow() {
  std::vector<SoTreeViewItem*> const old = std::exchange(m_table, {});
  m_table.resize(old.empty() ? 64 : old.size() * 2);
  for (SoTreeViewItem* row : old) {
    if (row) m_table[slotOf(row->m_node)] = row;
  }
}

void SoNodeRowIndex::add(SoTreeViewItem* row) {
  if (contains(row)) return;
  if ((m_nodes + 1) * 4 > m_table.size() * 3) grow();
  ++m_rowCount;
  SoTreeViewItem*& first = m_table[slotOf(row->m_node)];
  if (!first) {
    first = row->m_nextSame = row->m_previousSame = row;
    ++m_nodes;
    return;
  }
  SoTreeViewItem* const last = first->m_previousSame;
  row->m_nextSame = first;
  row->m_previousSame = last;
  last->m_nextSame = first->m_previousSame = row;
}

void SoNodeRowIndex::remove(SoTreeViewItem* row) {
  if (!contains(row)) return;
  --m_rowCount;
  std::size_t slot = slotOf(row->m_node);
  if (row->m_nextSame != row) {
    if (m_table[slot] == row) m_table[slot] = row->m_nextSame;
    row->m_previousSame->m_nextSame = row->m_nextSame;
    row->m_nextSame->m_previousSame = row->m_previousSame;
    row->m_nextSame = row->m_previousSame = nullptr;
    return;
  }
  row->m_nextSame = row->m_previousSame = nullptr;
  --m_nodes;
  // Entries behind the gap move up unless they stand where they belong.
  std::size_t const mask = m_table.size() - 1;
  for (std::size_t next = (slot + 1) & mask; m_table[next]; next = (next + 1) & mask) {
    std::size_t const home = hashOf(m_table[next]->m_node) & mask;
    if (((next - home) & mask) < ((next - slot) & mask)) continue;
    m_table[slot] = m_table[next];
    slot = next;
  }
  m_table[slot] = nullptr;
}

void SoNodeRowIndex::clear() {
  for (SoTreeViewItem* first : m_table) {
    for (SoTreeViewItem* row = first; row && row->m_nextSame;) {
      row->m_previousSame = nullptr;
      row = std::exchange(row->m_nextSame, nullptr);
    }
  }
  m_table.clear();
  m_nodes = 0;
  m_rowCount = 0;
}

bool SoNodeRowIndex::contains(SoTreeViewItem const* row) const { return row->m_nextSame; }

SoTreeViewItem* SoNodeRowIndex::find(SoNode const* node) const {
  return m_table.empty() ? nullptr : m_table[slotOf(node)];
}

std::vector<SoTreeViewItem*> SoNodeRowIndex::rows(SoNode const* node) const {
  std::vector<SoTreeViewItem*> found;
  SoTreeViewItem* const first = find(node);
  for (SoTreeViewItem* row = first; row; row = row->m_nextSame == first ? nullptr : row->m_nextSame)
    found.push_back(row);
  return found;
}
