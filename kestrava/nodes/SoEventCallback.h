#pragma once

#include <vector>

#include "kestrava/base/SoType.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/nodes/SoNode.h"

class SoEvent;
class SoHandleEventAction;

/// Calls functions of the program for events that come by.
///
/// All functions for the event's type are called in the order they were added, also after one of them has handled the
/// event. A function may add and remove functions and take the node out of its graph.
class SoEventCallback : public SoNode {
  SO_NODE(SoEventCallback, SoNode)
  using Function = void(void* data, SoEventCallback* node);
  struct Entry {
    SoType eventType;
    Function* function;
    void* data;
    friend bool operator==(Entry const&, Entry const&) = default;
  };

  /// Unless empty: only what is picked along it counts, but for a grabber. Any piece of the way to what is picked will
  /// do; one that begins above this node keeps it and the node alive until it is taken away.
  SoSFPath path{this, "path"};

  /// Called for events of that type and of types derived from it. Adding the same function, data and type again calls
  /// it twice.
  void addEventCallback(SoType eventType, Function* function, void* data = nullptr) {
    m_entries.push_back({eventType, function, data});
  }
  /// Removes what was added first with these arguments; nothing when there is none.
  void removeEventCallback(SoType eventType, Function* function, void* data = nullptr);
  std::vector<Entry> const& getEventCallbacks() const { return m_entries; }

  // For the functions while they are called.
  /// Null at other times, and so is the event.
  SoHandleEventAction* getAction() const { return m_action; }
  SoEvent const* getEvent() const;
  /// Nobody after this node gets the event.
  void setHandled();
  bool isHandled() const;
  /// Every further event comes to this node alone until it releases them. At other times a debug error says that there
  /// is nothing to grab or to release from.
  void grabEvents();
  void releaseEvents();

  /// The method for events.
  void handleEvent(SoHandleEventAction& action);

 protected:
  ~SoEventCallback() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_entries = static_cast<SoEventCallback const&>(from).m_entries;
  }

 private:
  bool isConcerned(SoHandleEventAction& action) const;

  std::vector<Entry> m_entries;
  SoHandleEventAction* m_action = nullptr;
};
