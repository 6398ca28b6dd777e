#pragma once

#include "kestrava/sensors/SoDelayQueueSensor.h"

/// Calls a function once when the host has idle time. Scheduled again from inside its own function, it
/// waits for the next idle pass.
class SoIdleSensor : public SoDelayQueueSensor {
 public:
  explicit SoIdleSensor(SoSensorCB* function = nullptr, void* data = nullptr)
      : SoDelayQueueSensor(function, data) {}
  bool isIdleOnly() const override { return true; }
};
