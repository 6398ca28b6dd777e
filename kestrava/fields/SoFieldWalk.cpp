#include "kestrava/fields/SoFieldWalk.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/sensors/SoFieldSensor.h"

namespace {
// Walks are not always ended in the order they began: one may wait for the end of a notification.
thread_local SoFieldWalk* latest = nullptr;
thread_local SoFieldWalk* following = nullptr;
std::atomic<std::uint32_t> lastNumber{0};
} // namespace

SoFieldWalk::SoFieldWalk() : m_number(++lastNumber), m_outer(std::exchange(latest, this)) {}

SoFieldWalk::~SoFieldWalk() {
  for (SoField* field : m_entries) {
    if (field) --field->m_links->listed;
  }
  for (SoFieldWalk** walk = &latest; *walk; walk = &(*walk)->m_outer) {
    if (*walk != this) continue;
    *walk = m_outer;
    break;
  }
}

SoFieldWalk* SoFieldWalk::getFollowing() { return following; }

void SoFieldWalk::fieldDies(SoField* field) {
  for (SoFieldWalk* walk = latest; walk; walk = walk->m_outer) {
    std::replace(walk->m_entries.begin(), walk->m_entries.end(), field, static_cast<SoField*>(nullptr));
  }
}

void SoFieldWalk::reach(SoField* field) {
  SoField::Links& links = field->links();
  if (std::exchange(links.visit, m_number) == m_number) return;
  ++links.listed;
  m_entries.push_back(field);
}

void SoFieldWalk::follow() {
  SoFieldWalk* const outer = std::exchange(following, this);
  while (m_next < m_entries.size() || !m_calls.empty()) {
    if (m_next == m_entries.size()) {
      Call const call = m_calls.front();
      m_calls.pop_front();
      call.engine->inputChanged(call.input);
      continue;
    }
    SoField* const field = m_entries[m_next++];
    for (SoField* follower : field->m_links->followers) {
      follower->markPending();
      if (follower->isNotifyEnabled()) reach(follower);
    }
    SoFieldContainer* const container = field->m_container;
    if (container && container->m_servesConnections) container->inputReached(field, *this);
  }
  following = outer;
}

void SoFieldWalk::tell() {
  for (std::size_t i = 0; i < m_entries.size(); ++i) {
    tellSensorsOf(i);
    SoField* const field = m_entries[i];
    SoFieldContainer* const container = field ? field->m_container : nullptr;
    if (!container) continue;
    container->fieldChanged(field);
    if (m_entries[i]) container->notify(SoNotification{SoNotification::UNSPECIFIED, container, field});
  }
}

void SoFieldWalk::tellSensors() {
  for (std::size_t i = 0; i < m_entries.size(); ++i) tellSensorsOf(i);
}

void SoFieldWalk::tellSensorsOf(std::size_t entry) {
  if (!m_entries[entry]) return;
  // A callback may attach, detach, and destroy sensors and the field itself.
  std::vector<SoFieldSensor*> const toldOf = m_entries[entry]->m_links->sensors;
  for (std::size_t k = toldOf.size(); k-- > 0 && m_entries[entry];) {
    SoField* const field = m_entries[entry];
    std::vector<SoFieldSensor*> const& sensors = field->m_links->sensors;
    bool const isThere = (k < sensors.size() && sensors[k] == toldOf[k]) ||
                         std::find(sensors.begin(), sensors.end(), toldOf[k]) != sensors.end();
    if (isThere) toldOf[k]->fieldNotified(field);
  }
}
