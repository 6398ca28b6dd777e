// Timers, the clock, and the engines that follow it.

#include <algorithm>
#include <chrono>
#include <memory>

#include "kestrava/engines/SoClock.h"
#include "kestrava/engines/SoComposeRotation.h"
#include "kestrava/engines/SoElapsedTime.h"
#include "kestrava/engines/SoGlobalField.h"
#include "kestrava/engines/SoOneShot.h"
#include "kestrava/engines/SoTimeCounter.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/sensors/SoAlarmSensor.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "kestrava/sensors/SoTimerSensor.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

void count(void* data, SoSensor*) { ++*static_cast<int*>(data); }

/// Works off timers until a condition holds; false when it does not within a long time.
template <class Condition> bool workUntil(Condition condition) {
  auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    SoSensorManager::processTimerQueue();
    SoSensorManager::processDelayQueue(true);
  }
  return true;
}

/// A time that a test sets.
struct HandClock {
  SoSFTime time;
  void set(double seconds) { time.setValue(SbTime(seconds)); }
};

} // namespace

TEST(SensorsTime, TimersRepeatAndAlarmsDoNot) {
  int ticks = 0, alarms = 0;
  SoTimerSensor timer(count, &ticks);
  timer.setInterval(SbTime(0.002));
  SoAlarmSensor alarm(count, &alarms);
  alarm.setTimeFromNow(SbTime(-5));
  EXPECT_EQ(SoSensorManager::getTimeToNextTimer(), -1);
  timer.schedule();
  EXPECT_GT(SoSensorManager::getTimeToNextTimer(), 0);
  alarm.schedule();
  EXPECT_EQ(SoSensorManager::getTimeToNextTimer(), 0);
  ASSERT_TRUE(workUntil([&] { return ticks >= 3; }));
  EXPECT_EQ(alarms, 1);
  EXPECT_FALSE(alarm.isScheduled());
  EXPECT_TRUE(timer.isScheduled());
  alarm.setTimeFromNow(SbTime(3600));
  alarm.schedule();
  alarm.setTimeFromNow(SbTime(0.001));
  ASSERT_TRUE(workUntil([&] { return alarms == 2; }));
  timer.unschedule();
  EXPECT_EQ(SoSensorManager::getTimeToNextTimer(), -1);
}

TEST(SensorsTime, ACallbackMayDestroyAndOneThatComesLateDoesNotMakeUp) {
  struct Both {
    std::unique_ptr<SoTimerSensor> timer;
    int calls = 0;
  } both;
  both.timer = std::make_unique<SoTimerSensor>(
      [](void* data, SoSensor*) {
        ++static_cast<Both*>(data)->calls;
        static_cast<Both*>(data)->timer.reset();
      },
      &both);
  both.timer->setInterval(SbTime(0));
  both.timer->schedule();
  ASSERT_TRUE(workUntil([&] { return both.calls > 0; }));
  EXPECT_EQ(both.calls, 1);

  int ticks = 0;
  SoTimerSensor timer(count, &ticks);
  timer.setInterval(SbTime(0.001));
  timer.schedule();
  auto const start = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(30)) {
  }
  SoSensorManager::processTimerQueue();
  EXPECT_EQ(ticks, 1);
}

TEST(EnginesTime, TheClockRunsWhileSomebodyListens) {
  SoField* const clock = SoGlobalField::find(SbName("realTime"));
  ASSERT_EQ(clock, &SoClock::getField());
  EXPECT_FALSE(SoClock::isRunning());
  EXPECT_EQ(SoClock::getInterval(), SbTime(1.0 / 30));
  {
    SoFieldSensor sensor;
    sensor.attach(clock);
    EXPECT_TRUE(SoClock::isRunning());
  }
  EXPECT_FALSE(SoClock::isRunning());
  SoRef<SoElapsedTime> engine(new SoElapsedTime);
  EXPECT_TRUE(engine->timeIn.isConnectionDefault());
  EXPECT_TRUE(engine->timeIn.isDefault());
  EXPECT_TRUE(SoClock::isRunning());
  EXPECT_NEAR(engine->timeIn.getValue().seconds, SbTime::now().seconds, 5)
      << "a newcomer gets the present time";
  engine->timeOut.getValue();
  for (double interval : {0.001, 0.0}) {
    SoClock::setInterval(SbTime(interval));
    EXPECT_TRUE(SoClock::isRunning());
    double const from = engine->timeOut.getValue().seconds;
    EXPECT_TRUE(workUntil([&] { return engine->timeOut.getValue().seconds > from + 0.005; }));
  }
  EXPECT_TRUE(engine->timeIn.isDefault());
  SoClock::setInterval(SbTime(1.0 / 30));
  engine->timeIn.disconnect();
  EXPECT_FALSE(SoClock::isRunning());
  EXPECT_FALSE(engine->timeIn.isDefault()) << "a file has to say so";
}

TEST(EnginesTime, AWindmillTurns) {
  auto* watch = new SoElapsedTime;
  auto* turn = new SoComposeRotation;
  SoRef<SoTransform> const sails(new SoTransform);
  turn->axis.setValue(SbVec3f(0, 1, 0));
  watch->speed = 2.f;
  ASSERT_TRUE(turn->angle.connectFrom(&watch->timeOut)) << "a time as an angle";
  ASSERT_TRUE(sails->rotation.connectFrom(&turn->rotation)) << "one rotation of many";
  HandClock hand;
  hand.set(100);
  watch->timeIn.connectFrom(&hand.time);
  EXPECT_EQ(sails->rotation.getValue().getAngle(), 0);
  auto const id = sails->getNodeId();
  hand.set(100.5);
  EXPECT_NE(sails->getNodeId(), id);
  EXPECT_EQ(sails->rotation.getValue(), SbRotation(SbVec3f(0, 1, 0), 1));
}

TEST(EnginesTime, ElapsedTimeKeepsWhatHasGoneBy) {
  SoRef<SoElapsedTime> const watch(new SoElapsedTime);
  HandClock hand;
  hand.set(10);
  watch->timeIn.connectFrom(&hand.time);
  auto const elapsed = [&] { return watch->timeOut.getValue().seconds; };
  EXPECT_EQ(elapsed(), 0);
  hand.set(12);
  watch->speed = 10.f; // nobody has read since: two seconds at the old speed
  hand.set(13);
  EXPECT_EQ(elapsed(), 12);
  watch->pause = true;
  Listener listener(watch);
  hand.set(20);
  for (auto const& call : listener.take()) EXPECT_NE(call.field, &watch->timeOut) << "it stands still";
  EXPECT_EQ(elapsed(), 12);
  watch->pause = false;
  hand.set(21);
  EXPECT_EQ(elapsed(), 22);
  watch->on = false;
  hand.set(30);
  EXPECT_EQ(elapsed(), 22);
  watch->on = true;
  EXPECT_EQ(elapsed(), 0);
  hand.set(31);
  watch->reset.setValue();
  EXPECT_EQ(elapsed(), 0);
  watch->speed = -1.f;
  hand.set(32);
  EXPECT_EQ(elapsed(), -1);
}

TEST(EnginesTime, OneShotRunsOnceATrigger) {
  SoRef<SoOneShot> const shot(new SoOneShot);
  HandClock hand;
  hand.set(0);
  shot->timeIn.connectFrom(&hand.time);
  shot->duration = SbTime(4);
  SoRef<SoCube> const follower(new SoCube);
  follower->width.connectFrom(&shot->ramp);
  hand.set(1);
  EXPECT_FALSE(shot->isActive.getValue());
  shot->trigger.setValue();
  EXPECT_TRUE(shot->isActive.getValue());
  hand.set(2);
  EXPECT_EQ(follower->width.getValue(), 0.25f);
  shot->trigger.setValue();
  EXPECT_EQ(shot->timeOut.getValue().seconds, 1) << "not while it runs";
  shot->flags = SoOneShot::RETRIGGERABLE | SoOneShot::HOLD_FINAL;
  shot->trigger.setValue();
  EXPECT_EQ(shot->timeOut.getValue().seconds, 0);
  Listener listener(follower);
  hand.set(100);
  EXPECT_EQ(listener.take().size(), 1u);
  EXPECT_FALSE(shot->isActive.getValue());
  EXPECT_EQ(shot->timeOut.getValue().seconds, 4);
  EXPECT_EQ(follower->width.getValue(), 1);
  hand.set(101);
  EXPECT_TRUE(listener.take().empty()) << "it is over";
  shot->flags = 0;
  shot->trigger.setValue();
  shot->disable = true;
  EXPECT_FALSE(shot->isActive.getValue());
  shot->trigger.setValue();
  EXPECT_FALSE(shot->isActive.getValue());
  EXPECT_EQ(shot->ramp.getValue(), 0);
}

TEST(EnginesTime, TimeCounterGoesRound) {
  SoRef<SoTimeCounter> const counter(new SoTimeCounter);
  HandClock hand;
  hand.set(0);
  counter->timeIn.connectFrom(&hand.time);
  ASSERT_TRUE(counter->set("min 1 max 7 step 3 frequency 0.1")); // 1, 4, 7 in ten seconds
  int rounds = 0;
  SoFieldSensor onSync(count, &rounds);
  onSync.setPriority(0);
  onSync.attach(&counter->syncOut);
  auto const at = [&](double seconds) {
    hand.set(seconds);
    return counter->output.getValue();
  };
  EXPECT_EQ(at(0), 1);
  EXPECT_EQ(at(3), 1);
  EXPECT_EQ(at(3.5), 4);
  EXPECT_EQ(at(9.9), 7);
  EXPECT_EQ(rounds, 0);
  EXPECT_EQ(at(11), 1);
  EXPECT_EQ(rounds, 1);
  ASSERT_TRUE(counter->set("duty [ 8, 1, 1 ]"));
  EXPECT_EQ(at(17), 1);
  EXPECT_EQ(at(18.5), 4);
  counter->on = false;
  EXPECT_EQ(at(50), 4);
  counter->on = true;
  EXPECT_EQ(at(51), 7);
  counter->reset = std::int16_t(4);
  EXPECT_EQ(at(51), 4);
  counter->syncIn.setValue();
  EXPECT_EQ(rounds, 2);
  EXPECT_EQ(counter->output.getValue(), 1);
  counter->step = std::int16_t(-3);
  EXPECT_EQ(at(52), 7) << "counts down";
  ASSERT_TRUE(counter->set("min 5 max 5 step 0 frequency inf"));
  EXPECT_EQ(at(53), 5);
}

TEST(EnginesGlobal, FieldsHaveNamesInTheProgram) {
  SbName const name("windSpeed");
  EXPECT_EQ(SoGlobalField::find(name), nullptr);
  auto* const wind = static_cast<SoSFFloat*>(SoGlobalField::create(name, SoSFFloat::getClassTypeId()));
  ASSERT_TRUE(wind);
  EXPECT_EQ(SoGlobalField::create(name, SoSFFloat::getClassTypeId()), wind);
  EXPECT_EQ(wind->getName(), name);
  {
    DebugErrors errors;
    EXPECT_EQ(SoGlobalField::create(name, SoSFTime::getClassTypeId()), nullptr);
    EXPECT_EQ(SoGlobalField::create(SbName("not valid"), SoSFFloat::getClassTypeId()), nullptr);
    EXPECT_EQ(SoGlobalField::create(SbName("type"), SoSFFloat::getClassTypeId()), nullptr);
    EXPECT_EQ(SoGlobalField::create(SbName("nothing"), SoField::getClassTypeId()), nullptr);
    EXPECT_EQ(errors.texts.size(), 4u);
  }
  SoRef<SoCube> const cube(new SoCube);
  ASSERT_TRUE(cube->width.connectFrom(wind));
  wind->setValue(8);
  EXPECT_EQ(cube->width.getValue(), 8);

  // What a file says stands for the field that is there; a new name becomes one.
  SoRef<SoGlobalField> const read(new SoGlobalField);
  ASSERT_TRUE(read->set("type \"SFFloat\" name \"windSpeed\" windSpeed 3"));
  ASSERT_EQ(read->getMeant(), wind->getContainer());
  EXPECT_EQ(wind->getValue(), 8);
  SoRef<SoGlobalField> const fresh(new SoGlobalField);
  ASSERT_TRUE(fresh->set("type SFVec3f name windDirection windDirection 1 0 0"));
  EXPECT_EQ(fresh->getMeant(), fresh.get());
  EXPECT_EQ(SoGlobalField::findObject(SbName("windDirection")), fresh.get());

  SoGlobalField::remove(name);
  SoGlobalField::remove(SbName("windDirection"));
  SoGlobalField::remove(SbName("realTime"));
  EXPECT_EQ(SoGlobalField::find(name), nullptr);
  EXPECT_TRUE(cube->width.isConnected());
  wind->setValue(9);
  EXPECT_EQ(cube->width.getValue(), 9) << "whoever follows keeps it";
  std::vector<SbName> const names = SoGlobalField::getNames();
  EXPECT_EQ(std::count(names.begin(), names.end(), name), 0);
  EXPECT_EQ(std::count(names.begin(), names.end(), SbName("realTime")), 1);
}
