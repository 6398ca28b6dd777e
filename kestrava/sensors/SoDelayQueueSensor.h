#pragma once

#include <cstdint>

#include "kestrava/sensors/SoSensor.h"

/// A sensor that waits in the delay queue: lower priorities go first, equal ones in the order they came.
/// Priority 0 does not wait: scheduling it calls the function at once.
class SoDelayQueueSensor : public SoSensor {
 public:
  static constexpr std::uint32_t DEFAULT_PRIORITY = 100;

  SoDelayQueueSensor(SoSensorCB* function, void* data) : SoSensor(function, data) {}
  ~SoDelayQueueSensor() override { SoDelayQueueSensor::unschedule(); }

  void setPriority(std::uint32_t priority);
  std::uint32_t getPriority() const { return m_priority; }

  void schedule() override;
  void unschedule() override;
  bool isScheduled() const override { return m_scheduled; }
  void trigger() override;
  /// True for sensors that are worked off only when the program has nothing else to do.
  virtual bool isIdleOnly() const { return false; }

 private:
  friend class SoSensorManager;
  std::uint32_t m_priority = DEFAULT_PRIORITY;
  bool m_scheduled = false;
  std::uint64_t m_order = 0;  // place among those of the same priority
};
