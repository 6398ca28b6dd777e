#pragma once

#include <functional>

class SoDelayQueueSensor;
class SoTimerQueueSensor;

/// The delay queue and the queue of timers. A host that gives the toolkit time calls processTimerQueue() and
/// processDelayQueue(); the Qt binding does it for Qt programs. One thread.
class SoSensorManager {
 public:
  /// Works off what is waiting now, lowest priority first, idle sensors only when `isIdle`. What is
  /// scheduled meanwhile waits for the next call.
  static void processDelayQueue(bool isIdle);
  /// True when something waits; idle sensors count only when `withIdle`.
  static bool hasPending(bool withIdle);
  /// Calls the timer and alarm sensors that are due, earliest first. What falls due meanwhile waits for the next
  /// call.
  static void processTimerQueue();
  /// Seconds until the next of them is due, 0 when one is; -1 when none waits.
  static double getTimeToNextTimer();
  /// Called (on the scheduling thread) when the delay queue gets its first entry or the first timer is another one. One function; null removes it.
  static void setQueueChangedCallback(std::function<void()> callback);

 private:
  friend class SoDelayQueueSensor;
  friend class SoTimerQueueSensor;
  static double getTimerTime();
  static void insert(SoTimerQueueSensor* sensor);
  static void remove(SoTimerQueueSensor* sensor);
  static void insert(SoDelayQueueSensor* sensor);
  static void remove(SoDelayQueueSensor* sensor);
};
