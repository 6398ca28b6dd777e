// The event loop works off the toolkit's queues, also after an end and a new beginning.

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include "kestrava/sensors/SoOneShotSensor.h"
#include "kestrava/sensors/SoTimerSensor.h"
#include "kestrava_qt/SoQt.h"

namespace {

/// Runs the event loop until a condition holds; false when it does not within a long time.
template <class Condition> bool runUntil(Condition condition) {
  QElapsedTimer time;
  time.start();
  while (!condition()) {
    if (time.elapsed() > 20'000) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

struct Calls {
  int count = 0;
  bool hasLoop = false;
};

/// Ends the binding in the middle of what it does, and lets what is to be deleted be deleted.
void finishWithin(void* data, SoSensor* sensor) {
  auto* const calls = static_cast<Calls*>(data);
  if (++calls->count > 1) return;
  sensor->unschedule();
  if (calls->hasLoop) {
    QEventLoop inner;
    QTimer::singleShot(0, &inner, [] { SoQt::finish(); });
    QTimer::singleShot(20, &inner, &QEventLoop::quit);
    inner.exec();
  } else {
    SoQt::finish();
  }
}

} // namespace

TEST(Pump, MayBeFinishedByWhatItCalls) {
  for (bool const hasLoop : {false, true}) {
    SoQt::init(nullptr);
    Calls calls{0, hasLoop};
    SoTimerSensor timer(finishWithin, &calls);
    timer.setInterval(SbTime(0.001));
    timer.schedule();
    EXPECT_TRUE(runUntil([&] { return calls.count == 1; }));
    SoQt::init(nullptr);
    SoOneShotSensor once(finishWithin, &calls);
    calls.count = 0;
    once.schedule();
    EXPECT_TRUE(runUntil([&] { return calls.count == 1; })) << "a second session";
    once.schedule();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(calls.count, 1) << "nobody works off the queue any more";
    SoQt::init(nullptr);
    EXPECT_TRUE(runUntil([&] { return calls.count == 2; })) << "what has waited meanwhile is called";
  }
}
