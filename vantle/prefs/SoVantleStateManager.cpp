#include "vantle/prefs/SoVantleStateManager.h"

#include <cstdio>

#include "vantle/prefs/SoStateWrapper.h"
#include "vantle/prefs/SoVantleState.h"

QMultiHash<QString, SoStateWrapper*> SoVantleStateManager::m_states;
QString SoVantleStateManager::m_currentStateId;

namespace {

void report(char const* fault) {
  std::printf("[E] SoVantleStateManager::setCurrentState: Error %s\n", fault);
  std::fflush(stdout);
}

} // namespace

void SoVantleStateManager::init() {
  m_currentStateId.clear();
  m_states.clear();
}

void SoVantleStateManager::finish() {
  qDeleteAll(m_states);
  m_states.clear();
  m_currentStateId.clear();
}

void SoVantleStateManager::stateRegister(QString const& name, SoVantleState* state) {
  m_states.insert(name, new SoStateWrapper{state});
}

void SoVantleStateManager::stateUnregister(SoVantleState* state) {
  for (SoStateWrapper* wrapper : std::as_const(m_states)) {
    if (wrapper->state == state) wrapper->state = nullptr;
  }
}

/// The newest of that name.
SoStateWrapper* SoVantleStateManager::find(QString const& name) { return m_states.value(name, nullptr); }

void SoVantleStateManager::setCurrentState(QString const& name) {
  if (name == m_currentStateId) return;
  if (!m_currentStateId.isEmpty()) {
    SoStateWrapper* const old = find(m_currentStateId);
    if (!old) {
      report("wrapper is NULL");
    } else if (!old->state) {
      report("state is NULL");
    } else {
      old->state->desactivate();
    }
    m_currentStateId.clear();
  }
  SoStateWrapper* const wrapper = find(name);
  if (!wrapper) {
    report("wrapper not found");
  } else if (!wrapper->state) {
    report("state not found");
  } else {
    wrapper->state->activate();
    m_currentStateId = name;
  }
}
