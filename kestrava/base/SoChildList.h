#pragma once

#include <vector>

class SoNode;

/// The children of one node, in order. Holds a reference to each and enters the parent among its auditors.
/// Changing the list notifies nobody: the owner of the list does.
class SoChildList {
 public:
  explicit SoChildList(SoNode* parent) : m_parent(parent) {}
  ~SoChildList() { truncate(0); }
  SoChildList(SoChildList const&) = delete;
  SoChildList& operator=(SoChildList const&) = delete;

  int getLength() const { return static_cast<int>(m_nodes.size()); }
  SoNode* operator[](int i) const { return m_nodes[i]; }
  auto begin() const { return m_nodes.begin(); }
  auto end() const { return m_nodes.end(); }
  /// First position of a node, -1 when it is not in the list.
  int find(SoNode const* node) const;

  void reserve(int count) { m_nodes.reserve(count); }
  void append(SoNode* node);
  /// Before the child at `index`; at the end for the list's length.
  void insert(SoNode* node, int index);
  void remove(int index);
  void replace(int index, SoNode* node);
  /// Removes the children from that position on.
  void truncate(int length);

 private:
  SoNode* m_parent;
  std::vector<SoNode*> m_nodes;
};
