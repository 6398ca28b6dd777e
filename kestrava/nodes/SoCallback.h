#pragma once

#include "kestrava/nodes/SoNode.h"

class SoAction;

/// Calls a function of the program whenever an action comes by.
class SoCallback : public SoNode {
  SO_NODE(SoCallback, SoNode)
  using Function = void(void* data, SoAction* action);

  /// One function; null removes it. It may change the action's state.
  void setCallback(Function* function, void* data = nullptr) {
    m_function = function;
    m_data = data;
    touch();
  }
  Function* getCallback() const { return m_function; }
  void* getData() const { return m_data; }

 protected:
  ~SoCallback() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_function = static_cast<SoCallback const&>(from).m_function;
    m_data = static_cast<SoCallback const&>(from).m_data;
  }

 private:
  Function* m_function = nullptr;
  void* m_data = nullptr;
};
