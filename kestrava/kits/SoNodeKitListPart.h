#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoNode.h"

class SoGroup;

/// A part of a kit that is a list of nodes. The nodes are the children of a group that the list holds in a
/// field; the list itself is no group.
class SoNodeKitListPart : public SoNode {
  SO_NODE(SoNodeKitListPart, SoNode)
  SoNodeKitListPart();

  SoSFNode containerNode{this, "containerNode"};

  int getNumChildren() const;
  SoNode* getChild(int index) const;
  /// -1 when it is no child.
  int findChild(SoNode const* node) const;
  /// Refused (false, with a debug error) for a position that does not exist, a node of a type that the list
  /// does not take, and a node that contains the list.
  bool insertChild(SoNode* node, int index);
  bool addChild(SoNode* node) { return insertChild(node, getNumChildren()); }
  bool removeChild(int index);
  bool replaceChild(int index, SoNode* node);

  /// Only nodes of that type may be entries from now on.
  void setItemType(SoType type) { m_itemType = type; }
  SoType getItemType() const { return m_itemType; }
  bool isTypePermitted(SoType type) const { return m_itemType.isBad() || type.isDerivedFrom(m_itemType); }
  /// Null when the field holds no group.
  SoGroup* getContainer() const;

  SoChildList* getChildren() const override { return &m_children; }

 protected:
  ~SoNodeKitListPart() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_itemType = static_cast<SoNodeKitListPart const&>(from).m_itemType;
  }
  void fieldChanged(SoField* field) override;

 private:
  bool takes(SoNode const* node, char const* operation) const;

  mutable SoChildList m_children{this};
  SoType m_itemType;
};
