#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/nodes/SoNode.h"

/// An ordered list of children. What one child changes in the traversal state stays for the next, and for
/// what follows the group.
class SoGroup : public SoNode {
  SO_NODE(SoGroup, SoNode)

  SoGroup() = default;

  int getNumChildren() const { return m_children.getLength(); }
  SoNode* getChild(int index) const { return m_children[index]; }
  /// First position of a node, -1 when it is no child.
  int findChild(SoNode const* node) const { return m_children.find(node); }

  // Each of these notifies once the change is complete. A null node, a position that does not exist, and a
  // child that contains this group are refused with a debug error.
  void addChild(SoNode* child);
  /// Before the child at `index`.
  void insertChild(SoNode* child, int index);
  void replaceChild(int index, SoNode* child);
  void replaceChild(SoNode* old, SoNode* child);
  void removeChild(int index);
  void removeChild(SoNode* child);
  void removeAllChildren();

  SoChildList* getChildren() const override { return &m_children; }

 protected:
  ~SoGroup() override = default;

 private:
  bool mayHold(SoNode const* child, char const* operation) const;
  bool hasIndex(int index, int count, char const* operation) const;

  mutable SoChildList m_children{this};
};
