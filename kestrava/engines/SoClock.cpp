#include "kestrava/engines/SoClock.h"

#include "kestrava/engines/SoGlobalField.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/sensors/SoIdleSensor.h"
#include "kestrava/sensors/SoTimerSensor.h"

namespace {

/// One of the two runs while somebody listens.
struct Clock {
  static void tick(void* data, SoSensor*) {
    auto* const self = static_cast<Clock*>(data);
    if (self->interval == SbTime()) self->idle.schedule();
    SoClock::getField().setValue(SbTime::now());
  }
  SbTime interval{1.0 / 30};
  SoTimerSensor timer{tick, this};
  SoIdleSensor idle{tick, this};
};

Clock& theClock() {
  static Clock& instance = *new Clock;
  return instance;
}

} // namespace

SoSFTime& SoClock::getField() { return *static_cast<SoSFTime*>(SoGlobalField::find(SbName("realTime"))); }

SbTime SoClock::getInterval() { return theClock().interval; }

void SoClock::setInterval(SbTime interval) {
  theClock().interval = interval > SbTime() ? interval : SbTime();
  theClock().timer.unschedule();
  theClock().idle.unschedule();
  listenersChanged();
}

bool SoClock::isRunning() { return theClock().timer.isScheduled() || theClock().idle.isScheduled(); }

void SoClock::listenersChanged() {
  SoSFTime& field = getField();
  bool const isWanted = field.hasFollowers() || field.isWatched();
  if (isWanted == isRunning()) return;
  if (!isWanted) {
    theClock().timer.unschedule();
    theClock().idle.unschedule();
    return;
  }
  if (theClock().interval > SbTime()) {
    theClock().timer.setInterval(theClock().interval);
    theClock().timer.schedule();
  } else {
    theClock().idle.schedule();
  }
  // Whoever comes gets the present time, not that of the last one who left.
  field.setValue(SbTime::now());
}
