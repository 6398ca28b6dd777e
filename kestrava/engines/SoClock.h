#pragma once

#include "kestrava/base/SbTime.h"

class SoSFTime;

/// The clock of the program: the global field "realTime", a time in seconds since 1970-01-01 00:00 UTC. It
/// runs, by a timer in SoSensorManager's queue, only while something follows or watches that field.
class SoClock {
 public:
  SoClock() = delete;
  static SoSFTime& getField();
  /// Seconds from one time to the next, 1/30 at first; 0 means once in every idle pass.
  static void setInterval(SbTime interval);
  static SbTime getInterval();
  static bool isRunning();

 private:
  friend class SoGlobalField;
  static void listenersChanged();
};
