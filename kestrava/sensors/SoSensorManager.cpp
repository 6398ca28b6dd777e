#include "kestrava/sensors/SoSensorManager.h"

#include <chrono>
#include <map>
#include <set>
#include <algorithm>
#include <tuple>
#include <utility>

#include "kestrava/sensors/SoDelayQueueSensor.h"
#include "kestrava/sensors/SoTimerQueueSensor.h"

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
  std::map<std::pair<double, std::uint64_t>, SoTimerQueueSensor*> timers;  // by moment
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
  // Mostly it belongs at the end: all ordinary sensors have one priority.
  set.insert(set.end(), {sensor->m_priority, sensor->m_order, sensor});
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

double SoSensorManager::getTimerTime() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void SoSensorManager::insert(SoTimerQueueSensor* sensor) {
  Queue& q = queue();
  sensor->m_order = ++q.lastOrder;
  auto const [place, added] = q.timers.emplace(std::pair(sensor->m_due, sensor->m_order), sensor);
  if (place == q.timers.begin() && q.changed) q.changed();
}

void SoSensorManager::remove(SoTimerQueueSensor* sensor) {
  queue().timers.erase({sensor->m_due, std::exchange(sensor->m_order, 0)});
}

void SoSensorManager::processTimerQueue() {
  Queue& q = queue();
  double const now = getTimerTime();
  std::uint64_t const last = q.lastOrder;
  std::pair<double, std::uint64_t> from{-1, 0};
  for (auto next = q.timers.upper_bound(from); next != q.timers.end(); next = q.timers.upper_bound(from)) {
    from = next->first;
    if (from.first > now) break;
    if (from.second > last) continue;
    SoTimerQueueSensor* const sensor = next->second;
    remove(sensor);
    sensor->comeDue();
  }
}

double SoSensorManager::getTimeToNextTimer() {
  auto const& timers = queue().timers;
  return timers.empty() ? -1 : std::max(0.0, timers.begin()->first.first - getTimerTime());
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
