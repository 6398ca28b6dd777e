#pragma once

#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrava/nodes/SoNode.h"

class SoPath;

/// Makes a deep copy of a graph; SoNode::copy() is the usual way to it. Classes meet it in
/// SoFieldContainer::copyContents() and SoField::takeCopyOf(), where it tells what became of the objects of
/// the original. It keeps a list of its own: depth costs no stack.
class SoCopier {
 public:
  /// Connections are left out unless asked for. From inside they then lead to the copy of the source, from
  /// outside to the same source. An engine is inside when what follows it is all inside, or when an input of
  /// it follows something inside.
  explicit SoCopier(bool copyConnections) : m_copyConnections(copyConnections) {}
  SoCopier(SoCopier const&) = delete;
  SoCopier& operator=(SoCopier const&) = delete;

  /// The copy of a node with everything below it, or of an engine, with count 0. Once.
  SoFieldContainer* copy(SoFieldContainer const* root);

  /// For fields: the copy of an object that they refer to; the object itself, where it can not be copied
  /// (with a debug error) or is outside. Null for null.
  SoNode* copyOf(SoNode const* node);
  SoFieldContainer* copyOf(SoFieldContainer const* object);
  /// For copyContents(): the copy of something in the graph; null for what is outside, which includes
  /// pointers to what is gone.
  SoFieldContainer* find(void const* object);
  SoNode* findNode(SoNode const* node) {
    return static_cast<SoNode*>(find(static_cast<SoFieldContainer const*>(node)));
  }
  /// The same path through the copy, as far as it is in the graph; the path itself when it begins outside.
  SoRef<SoPath> copyOf(SoPath* path);
  /// Calls a function when all nodes of the copy stand.
  void later(std::function<void()> function) { m_later.push_back(std::move(function)); }

 private:
  struct Pair {
    SoFieldContainer const* from;
    SoFieldContainer* to;
    bool isNode;
  };
  struct Connection {
    SoField const* from;
    SoField* to;
  };
  SoFieldContainer* enter(SoFieldContainer const* from, bool isNode);
  void fillAll();
  void fill(Pair pair);
  void copyEngines();
  void connectAll();

  bool m_copyConnections;
  bool m_isGraphComplete = false; // what fields refer to from now on is looked up, not copied
  std::vector<Pair> m_pairs;
  std::size_t m_next = 0; // first pair that is not filled
  // Few objects are met twice: only those go here while the graph is walked.
  std::unordered_map<SoFieldContainer const*, SoFieldContainer*> m_shared;
  std::unordered_map<void const*, SoFieldContainer*> m_all; // as far as m_found
  std::size_t m_found = 0;
  std::vector<Connection> m_connections;
  std::vector<std::function<void()>> m_later;
  std::vector<SoRef<SoFieldContainer>> m_engines; // held until something is connected from them
};
