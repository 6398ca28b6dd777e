#pragma once

#include <vector>

#include "kestrava/base/SoBase.h"
#include "kestrava/nodes/SoNode.h"

/// A chain of nodes from a head down, each the child of the one before it at a known position; hidden children
/// (of kits, files, inlines) included. Holds references to its nodes. It does not follow later changes of
/// the graph.
class SoPath : public SoBase {
 public:
  explicit SoPath(SoNode* head = nullptr);

  static SoType getClassTypeId();
  SoType getTypeId() const override { return getClassTypeId(); }

  void setHead(SoNode* head);
  /// Appends the child at that position of the tail's child list; false when there is none.
  bool append(int childIndex);
  /// Appends a node below the tail: the first place where the tail has it as a child, or without a position
  /// (index -1) when it is held by a field.
  void appendNode(SoNode* node);
  /// Appends a node whose position is known.
  void appendNode(SoNode* node, int childIndex);
  void append(SoPath const& continuation);
  /// Cuts everything from that position on.
  void truncate(int length);
  void pop() { truncate(getLength() - 1); }

  int getLength() const { return static_cast<int>(m_steps.size()); }
  SoNode* getHead() const { return m_steps.empty() ? nullptr : m_steps.front().node.get(); }
  SoNode* getTail() const { return m_steps.empty() ? nullptr : m_steps.back().node.get(); }
  SoNode* getNode(int i) const { return m_steps[i].node.get(); }
  /// Position of node i in the child list of node i - 1; -1 for the head.
  int getIndex(int i) const { return m_steps[i].index; }
  bool containsNode(SoNode const* node) const;
  /// Position of a node's first occurrence, -1 when it is not on the path.
  int findNode(SoNode const* node) const;
  /// A new path (count 0) of the nodes from a position on; `length` 0 means to the end.
  SoPath* copy(int from = 0, int length = 0) const;

  friend bool operator==(SoPath const& a, SoPath const& b);

 protected:
  ~SoPath() override = default;

 private:
  struct Step {
    SoRef<SoNode> node;
    int index;
  };
  std::vector<Step> m_steps;
};
