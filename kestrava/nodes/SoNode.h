#pragma once

#include "kestrava/fields/SoFieldContainer.h"

class SoChildList;

/// Declares a node class; stands first in it.
#define SO_NODE(Class, Parent) SO_CONTAINER(Class, Parent)
#define SO_ABSTRACT_NODE(Class, Parent) SO_ABSTRACT_CONTAINER(Class, Parent)

/// Base of everything that stands in a scene graph. What a node does to an action is registered with the
/// action (SoAction::addMethod), not written here.
class SoNode : public SoFieldContainer {
  SO_ABSTRACT_NODE(SoNode, SoFieldContainer)

  /// The full list of children, hidden ones of kits, files and inlines included; null for a node that has no
  /// child list.
  virtual SoChildList* getChildren() const { return nullptr; }

  /// Number of this node's present state, never 0: it changes with every change of the node or of anything
  /// below it, and no two states of any nodes share one.
  std::uint64_t getNodeId() const { return m_nodeId; }

  /// True for nodes with a field "override" that is set: properties of the same kind further down are then
  /// without effect.
  bool isOverride() const;
  /// Does nothing for a node without that field. Notifies.
  void setOverride(bool on);

  /// A new graph, count 0, with everything below this node: sharing inside of it is kept, nodes that fields refer
  /// to are copied too, paths lead into the copy. Names, flags and what nodes hold besides fields come along;
  /// sensors do not. Connections are left out (values stay) unless asked for; see SoCopier for where they lead then.
  SoNode* copy(bool copyConnections = false) const;

  /// True when `holder` is `held` or stands somewhere below it, so that holding it would close a circle.
  static bool closesCircle(SoFieldContainer const* holder, SoNode const* held);

  /// A new node of a type, count 0; null when the type is abstract or not one of nodes.
  static SoNode* create(SoType type);

  /// The latest node of that name, null when there is none.
  static SoNode* getByName(SbName const& name);

  /// Called for every node that is destroyed, on the thread that does it: for tables that refer to many nodes
  /// without holding them. Of the node only the address is left.
  using DestroyedCB = void(void* data, SoNode const* node);
  static void addDestroyedCallback(DestroyedCB* function, void* data);
  static void removeDestroyedCallback(DestroyedCB* function, void* data);

 protected:
  SoNode() = default;
  ~SoNode() override;
  void changed(SoNotification const&) override { m_nodeId = nextNodeId(); }

 private:
  static std::uint64_t nextNodeId();
  std::uint64_t m_nodeId = nextNodeId();
};
