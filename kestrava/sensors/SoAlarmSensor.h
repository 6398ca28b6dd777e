#pragma once

#include "kestrava/base/SbTime.h"
#include "kestrava/sensors/SoTimerQueueSensor.h"

/// Calls a function once, at a moment.
class SoAlarmSensor : public SoTimerQueueSensor {
 public:
  explicit SoAlarmSensor(SoSensorCB* function = nullptr, void* data = nullptr)
      : SoTimerQueueSensor(function, data) {}

  /// A moment by the system's clock; one that is past means at once. Setting it while scheduled counts too.
  void setTime(SbTime moment);
  void setTimeFromNow(SbTime span) { setTime(SbTime::now() + span); }
  SbTime getTime() const { return m_moment; }
  /// Does nothing while it is scheduled.
  void schedule() override;

 private:
  void comeDue() override;
  SbTime m_moment;
};
