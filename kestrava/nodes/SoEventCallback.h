#pragma once

#include <vector>

#include "kestrava/base/SoType.h"
#include "kestrava/nodes/SoNode.h"

/// Calls functions of the program for events that come by.
class SoEventCallback : public SoNode {
  SO_NODE(SoEventCallback, SoNode)
  using Function = void(void* data, SoEventCallback* node);
  struct Entry {
    SoType eventType;
    Function* function;
    void* data;
    friend bool operator==(Entry const&, Entry const&) = default;
  };

  /// Adding the same function, data and type again calls it twice.
  void addEventCallback(SoType eventType, Function* function, void* data = nullptr) {
    m_entries.push_back({eventType, function, data});
  }
  /// Removes what was added first with these arguments; nothing when there is none.
  void removeEventCallback(SoType eventType, Function* function, void* data = nullptr);
  std::vector<Entry> const& getEventCallbacks() const { return m_entries; }

 protected:
  ~SoEventCallback() override = default;

 private:
  std::vector<Entry> m_entries;
};
