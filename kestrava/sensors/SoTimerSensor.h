#pragma once

#include "kestrava/base/SbTime.h"
#include "kestrava/sensors/SoTimerQueueSensor.h"

/// Calls a function again and again at regular intervals, until it is unscheduled. Calls that come too late
/// are left out, not made up for.
class SoTimerSensor : public SoTimerQueueSensor {
 public:
  explicit SoTimerSensor(SoSensorCB* function = nullptr, void* data = nullptr)
      : SoTimerQueueSensor(function, data) {}

  /// Seconds, 1/30 at first; counts from the next call on. What is not above 0 becomes a millisecond.
  void setInterval(SbTime interval);
  SbTime getInterval() const { return m_interval; }
  /// The first call comes one interval from now. Does nothing while it is scheduled.
  void schedule() override;

 private:
  void comeDue() override;
  SbTime m_interval{1.0 / 30};
};
