#include "vnt/VntFieldHandle.h"

#include <unordered_map>
#include <utility>

#include "kestrava/fields/SoField.h"
#include "kestrava/sensors/SoFieldSensor.h"

namespace {

// Never destroyed: commands that nobody destroys may outlive the library's statics.
auto& watches() {
  static auto& all = *new std::unordered_map<SoField*, std::weak_ptr<void>>;
  return all;
}

} // namespace

struct VntFieldHandle::Watch {
  explicit Watch(SoField* watched) : field(watched) {
    // Only the field's end is of interest: a change is not to wait in the delay queue for nothing.
    sensor.setPriority(0);
    sensor.setDeleteCallback(fieldDies, this);
    sensor.attach(field);
  }
  ~Watch() {
    if (field) watches().erase(field);
  }
  Watch(Watch const&) = delete;
  Watch& operator=(Watch const&) = delete;

  static void fieldDies(void* watch, SoSensor*) {
    auto* const self = static_cast<Watch*>(watch);
    watches().erase(std::exchange(self->field, nullptr));
  }

  SoField* field;
  SoFieldSensor sensor;
};

VntFieldHandle::VntFieldHandle(SoField* field) {
  if (!field) return;
  std::weak_ptr<void>& known = watches()[field];
  m_watch = std::static_pointer_cast<Watch>(known.lock());
  if (m_watch) return;
  m_watch = std::make_shared<Watch>(field);
  known = m_watch;
}

SoField* VntFieldHandle::get() const { return m_watch ? m_watch->field : nullptr; }

void VntFieldHandle::releaseAll() {
  for (auto const& [field, known] : std::exchange(watches(), {})) {
    auto const watch = std::static_pointer_cast<Watch>(known.lock());
    if (!watch) continue;
    watch->sensor.detach();
    watch->field = nullptr;
  }
}
