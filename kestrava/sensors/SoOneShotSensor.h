#pragma once

#include "kestrava/sensors/SoDelayQueueSensor.h"

/// Calls a function once, the next time the delay queue is worked off.
class SoOneShotSensor : public SoDelayQueueSensor {
 public:
  explicit SoOneShotSensor(SoSensorCB* function = nullptr, void* data = nullptr)
      : SoDelayQueueSensor(function, data) {}
};
