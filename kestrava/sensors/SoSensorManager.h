#pragma once

#include <functional>

class SoDelayQueueSensor;

/// The delay queue. A host that gives the toolkit time calls processDelayQueue(); the Qt binding does it for
/// Qt programs. One thread.
class SoSensorManager {
 public:
  /// Works off what is waiting now, lowest priority first, idle sensors only when `isIdle`. What is
  /// scheduled meanwhile waits for the next call.
  static void processDelayQueue(bool isIdle);
  /// True when something waits; idle sensors count only when `withIdle`.
  static bool hasPending(bool withIdle);
  /// Called (on the scheduling thread) when the queue gets its first entry. One function; null removes it.
  static void setQueueChangedCallback(std::function<void()> callback);

 private:
  friend class SoDelayQueueSensor;
  static void insert(SoDelayQueueSensor* sensor);
  static void remove(SoDelayQueueSensor* sensor);
};
