#include "kestrava/sensors/SoSensorManager.h"

#include <set>
#include <tuple>
#include <utility>

#include "kestrava/sensors/SoDelayQueueSensor.h"

namespace {

struct Key {
  std::uint32_t priority;
  std::uint64_t order;
  SoDelayQueueSensor* sensor;
  friend bool operator<(Key const& a, Key const& b) {
    return std::tie(a.priority, a.order) < std::tie(b.priority, b.order);
  }
};

struct Queue {
  std::set<Key> ordinary;
  std::set<Key> idle;
  std::uint64_t lastOrder = 0;
  std::function<void()> changed;
};

Queue& queue() {
  static Queue& instance = *new Queue;
  return instance;
}

}  // namespace

void SoSensorManager::insert(SoDelayQueueSensor* sensor) {
  Queue& q = queue();
  sensor->m_order = ++q.lastOrder;
  auto& set = sensor->isIdleOnly() ? q.idle : q.ordinary;
  set.insert({sensor->m_priority, sensor->m_order, sensor});
  if (set.size() == 1 && q.changed) q.changed();
}

void SoSensorManager::remove(SoDelayQueueSensor* sensor) {
  Key const key{sensor->m_priority, sensor->m_order, sensor};
  // Not by isIdleOnly(): the destructor of the base class comes here too.
  if (queue().ordinary.erase(key) == 0) queue().idle.erase(key);
}

void SoSensorManager::processDelayQueue(bool isIdle) {
  Queue& q = queue();
  // Everything scheduled from now on belongs to the next pass, so a sensor that schedules itself does not
  // keep this one going.
  std::uint64_t const last = q.lastOrder;
  for (auto* set : {&q.ordinary, &q.idle}) {
    if (set == &q.idle && !isIdle) break;
    Key from{0, 0, nullptr};
    for (auto next = set->lower_bound(from); next != set->end(); next = set->upper_bound(from)) {
      from = *next;
      if (from.order > last) continue;
      from.sensor->trigger();
    }
  }
}

bool SoSensorManager::hasPending(bool withIdle) {
  return !queue().ordinary.empty() || (withIdle && !queue().idle.empty());
}

void SoSensorManager::setQueueChangedCallback(std::function<void()> callback) {
  queue().changed = std::move(callback);
}

void SoDelayQueueSensor::setPriority(std::uint32_t priority) {
  bool const waiting = m_scheduled;
  if (waiting) SoDelayQueueSensor::unschedule();
  m_priority = priority;
  if (waiting) SoDelayQueueSensor::schedule();
}

void SoDelayQueueSensor::schedule() {
  if (m_priority == 0) {
    trigger();
  } else if (!m_scheduled) {
    m_scheduled = true;
    SoSensorManager::insert(this);
  }
}

void SoDelayQueueSensor::unschedule() {
  if (!m_scheduled) return;
  m_scheduled = false;
  SoSensorManager::remove(this);
}

void SoDelayQueueSensor::trigger() {
  SoDelayQueueSensor::unschedule();
  SoSensor::trigger();
}
