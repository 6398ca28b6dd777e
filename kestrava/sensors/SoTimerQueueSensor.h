#pragma once

#include <cstdint>

#include "kestrava/sensors/SoSensor.h"

/// A sensor that waits for a moment, in SoSensorManager's queue of timers.
class SoTimerQueueSensor : public SoSensor {
 public:
  ~SoTimerQueueSensor() override { SoTimerQueueSensor::unschedule(); }
  void unschedule() override;
  bool isScheduled() const override { return m_order != 0; }

 protected:
  using SoSensor::SoSensor;
  /// Waits that many seconds, from the moment that was waited for last when `fromLast` and it is not long
  /// ago.
  void waitFor(double seconds, bool fromLast = false);

 private:
  friend class SoSensorManager;
  /// Called when the moment has come; the sensor waits no longer.
  virtual void comeDue() = 0;

  double m_due = 0;          // seconds of a clock that is never set
  std::uint64_t m_order = 0; // place among those of the same moment; 0 while not waiting
};
