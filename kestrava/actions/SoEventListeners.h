#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "kestrava/base/SoType.h"

class SoNode;

/// Tells which parts of a graph an event need not be offered to, because nothing in them listens and nothing
/// in them matters to those who do. What was found out is kept by node id, so a change costs another look at
/// the nodes above it alone.
class SoEventListeners {
 public:
  /// Before a traversal. Without `cameras` these count as nothing: another one stands for them.
  void begin(bool cameras);
  /// False when nothing in a node or below it would notice an event.
  bool isIn(SoNode* node);
  bool isCamera(SoType type) { return traitsOf(type).isCamera; }

  /// The children of a group that are to be entered; none when `last` is before `first`.
  struct Range {
    int first = 0, last = -1;
    bool scoped = false;
  };
  /// False for nodes that do more than entering their children.
  bool getRange(SoNode* node, Range& range);

 private:
  struct Traits {
    bool known = false;
    bool isScope = false; // enters its children, and leaves no trace in the state
    bool isGroup = false; // enters its children
    bool isCamera = false;
    bool listens = false;
  };
  /// Of a node with children. What can be passed by is a scope without listeners.
  struct Known {
    bool listens = false;
    int firstNeeded = 0, lastNeeded = -1; // children that can not be passed by
    int lastListening = -1;
  };
  struct Frame {
    SoNode* node;
    int next;
    Known known;
  };
  bool find(SoNode* node);
  static void count(Known& known, int child, bool listens, Traits const& traits);
  Traits traitsOf(SoType type) {
    auto const index = static_cast<size_t>(type.getIndex());
    return index < m_types.size() && m_types[index].known ? m_types[index] : lookAt(type);
  }
  Traits lookAt(SoType type);

  bool m_cameras = true;
  std::unordered_map<std::uint64_t, Known> m_known; // of nodes that have children, by their ids
  std::vector<Traits> m_types;
  int m_version = -1; // of the registered methods
  size_t m_limit = 0; // so many ids are kept before those of states long past are dropped
};
