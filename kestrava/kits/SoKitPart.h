#pragma once

#include "kestrava/fields/SoSFNode.h"

class SoBaseKit;

/// The field of a kit that holds one of its parts. The catalog of the kit's class is made from these
/// declarations: parts directly under the kit ("this") are declared before deeper ones.
class SoKitPart : public SoSFNode {
 public:
  /// Nodes of a type (or derived from it) may be the part; one of `made` is made where a part is missing. The
  /// part is a child of the part `parent`, or of the kit itself.
  SoKitPart(SoBaseKit* kit, char const* name, SoType type, SoType made, char const* parent,
            bool isPublic = true);
  using SoSFNode::operator=;

  SoType getPartType() const { return m_type; }
  SoType getMadeType() const { return m_made; }
  char const* getParentName() const { return m_parent; }
  bool isPublic() const { return m_isPublic; }
  /// For list parts: the type of the group that holds the entries, and that of the entries.
  SoType getContainerType() const { return m_containerType; }
  SoType getItemType() const { return m_itemType; }

  /// Takes a node without telling anybody.
  void holdQuietly(SoNode* node) { hold(node); }

 protected:
  SoType m_containerType, m_itemType;

 private:
  SoType m_type, m_made;
  char const* m_parent;
  bool m_isPublic;
};

/// The field of a kit that holds a list of nodes of one type, in a group of its own.
class SoKitListPart : public SoKitPart {
 public:
  SoKitListPart(SoBaseKit* kit, char const* name, SoType container, SoType item, char const* parent);
  using SoSFNode::operator=;
};
