#include "kestrava/sensors/SoTimerQueueSensor.h"

#include <algorithm>

#include "kestrava/sensors/SoAlarmSensor.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "kestrava/sensors/SoTimerSensor.h"

void SoTimerQueueSensor::waitFor(double seconds, bool fromLast) {
  unschedule();
  double const now = SoSensorManager::getTimerTime();
  double const due = (fromLast ? m_due : now) + seconds;
  m_due = due > now || !fromLast ? due : now + seconds;
  SoSensorManager::insert(this);
}

void SoTimerQueueSensor::unschedule() {
  if (m_order != 0) SoSensorManager::remove(this);
}

void SoTimerSensor::setInterval(SbTime interval) {
  constexpr double SHORTEST = 0.001;
  m_interval = SbTime(interval.seconds >= SHORTEST ? interval.seconds : SHORTEST);
}

void SoTimerSensor::schedule() {
  if (!isScheduled()) waitFor(m_interval.seconds);
}

void SoTimerSensor::comeDue() {
  // Before the call, which may unschedule and destroy it.
  waitFor(m_interval.seconds, true);
  trigger();
}

void SoAlarmSensor::setTime(SbTime moment) {
  m_moment = moment;
  if (!isScheduled()) return;
  unschedule();
  schedule();
}

void SoAlarmSensor::schedule() {
  // Not longer than a while at a time: the system's clock may be set.
  constexpr double LONGEST = 60;
  double const left = (m_moment - SbTime::now()).seconds;
  if (!isScheduled()) waitFor(left > 0 ? std::min(left, LONGEST) : 0);
}

void SoAlarmSensor::comeDue() {
  constexpr double NEAR_ENOUGH = 0.001;
  if ((m_moment - SbTime::now()).seconds > NEAR_ENOUGH) {
    schedule();
  } else {
    trigger();
  }
}
