// Engines and sensors that go, or change, in the middle of what they are part of.

#include <cmath>

#include "kestrava/engines/SoComputeBoundingBox.h"
#include "kestrava/engines/SoGate.h"
#include "kestrava/engines/SoGlobalField.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/sensors/SoAlarmSensor.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "node_helpers.h"

using namespace node_test;

TEST(EnginesLife, AnotherTypeMayTakeTheLastFollowerAway) {
  SoRef<SoCube> const cube(new SoCube);
  auto* const gate = new SoGate;
  gate->type = SbName("SFFloat");
  ASSERT_TRUE(cube->width.connectFrom(gate->getOutput()));
  gate->type = SbName("MFFloat");
  EXPECT_FALSE(cube->width.isConnected());
}

TEST(EnginesLife, AFileThatTakesAFieldAwayIsRefused) {
  for (char const* first : {"type \"SFFloat\" input = c.width", "type \"SFPath\" input Path { USE c [ ] }"}) {
    ReadErrors errors;
    std::string const text = std::string("Separator { DEF c Cube { } Cube { width = Gate { ") + first +
                             " type \"SFVec3f\" } . output } }";
    EXPECT_EQ(readText(text).get(), nullptr) << text;
    EXPECT_EQ(errors.texts.size(), 1u);
  }
}

TEST(EnginesLife, ABoxThatMovesWhatItIsTheBoxOfComesToRest) {
  SoRef<SoSeparator> const root(new SoSeparator);
  SoRef<SoTransform> const beside(new SoTransform);
  SoRef<SoCube> const cube(new SoCube);
  root->addChild(cube);
  root->addChild(beside);
  SoRef<SoPath> const path(new SoPath(root));
  path->append(0);
  auto* const box = new SoComputeBoundingBox;
  box->path.setValue(path);
  ASSERT_TRUE(beside->translation.connectFrom(&box->max));
  Listener listener(beside);
  cube->width = 6.f;
  EXPECT_EQ(beside->translation.getValue()[0], 3);
  EXPECT_EQ(listener.take().size(), 1u);
  beside->translation.disconnect(); // the engine holds the path, and its follower the engine
}

TEST(EnginesLife, AGateThatIsShutLetsNoChangeOfANodeThrough) {
  SoRef<SoCube> const cube(new SoCube);
  SoRef<SoGate> const gate(new SoGate);
  gate->type = SbName("SFNode");
  static_cast<SoSFNode*>(gate->getInput())->setValue(cube);
  int calls = 0;
  SoFieldSensor sensor([](void* data, SoSensor*) { ++*static_cast<int*>(data); }, &calls);
  sensor.setPriority(0);
  sensor.attach(gate->getOutput());
  cube->width = 3.f;
  EXPECT_EQ(calls, 0);
  gate->enable = true;
  calls = 0;
  cube->width = 4.f;
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(static_cast<SoSFNode*>(gate->getOutput())->getValue(), cube.get());
}

TEST(EnginesLife, AGlobalFieldKeepsItsName) {
  auto* const speed = SoGlobalField::create(SbName("speedOfLight"), SoSFFloat::getClassTypeId());
  auto* const object = static_cast<SoGlobalField*>(speed->getContainer());
  DebugErrors errors;
  object->name = SbName("realTime");
  object->type = SbName("SFTime");
  EXPECT_EQ(errors.texts.size(), 2u);
  EXPECT_EQ(object->name.getValue(), SbName("speedOfLight"));
  EXPECT_EQ(object->type.getValue(), SbName("SFFloat"));
  EXPECT_EQ(object->getMeant(), object);
  SoGlobalField::remove(SbName("speedOfLight"));
}

TEST(SensorsLife, ASensorIsCalledOnceThoughAnotherOneLeaves) {
  SoRef<SoCube> const cube(new SoCube);
  struct Log {
    int calls[4] = {};
    SoFieldSensor sensors[4];
  } log;
  for (SoFieldSensor& sensor : log.sensors) {
    sensor.setFunction([](void* data, SoSensor* called) {
      auto* const all = static_cast<Log*>(data);
      ++all->calls[static_cast<SoFieldSensor*>(called) - all->sensors];
      all->sensors[0].detach();
    });
    sensor.setData(&log);
    sensor.setPriority(0);
    sensor.attach(&cube->width);
  }
  cube->width = 3.f;
  EXPECT_EQ(log.calls[0], 0);
  for (int i = 1; i < 4; ++i) EXPECT_EQ(log.calls[i], 1) << i;
}

TEST(SensorsLife, AMomentThatIsNoneIsNow) {
  int calls = 0;
  auto const count = [](void* data, SoSensor*) { ++*static_cast<int*>(data); };
  SoAlarmSensor never(count, &calls), soon(count, &calls);
  never.setTime(SbTime(std::nan("")));
  never.schedule();
  soon.setTimeFromNow(SbTime(-1));
  soon.schedule();
  SoSensorManager::processTimerQueue();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(SoSensorManager::getTimeToNextTimer(), -1);
}

TEST(FieldsLife, AFaultyTextLeavesAFieldAsItWas) {
  SoRef<SoCube> const cube(new SoCube);
  ReadErrors errors;
  EXPECT_FALSE(cube->set("width 3 height zero"));
  EXPECT_EQ(cube->width.getValue(), 3);
  SoRef<SoTransform> const place(new SoTransform);
  EXPECT_FALSE(place->set("translation 1 2 bad"));
  EXPECT_EQ(place->translation.getValue(), SbVec3f());
  EXPECT_EQ(errors.texts.size(), 2u);
}

// In the order in which they came, which is the worst one for a list that is searched from its end.
TEST(FieldsLife, ManyFollowersMayLeaveInAnyOrder) {
  constexpr int MANY = 30'000;
  SoRef<SoCube> const source(new SoCube);
  std::vector<SoRef<SoCube>> followers;
  for (int i = 0; i < MANY; ++i) {
    followers.emplace_back(new SoCube);
    followers.back()->width.connectFrom(&source->width);
  }
  for (auto& follower : followers) follower.reset();
  EXPECT_FALSE(source->width.hasFollowers());
}

TEST(FieldsLife, ManyParentsMayLeaveInAnyOrder) {
  constexpr int MANY = 60'000;
  SoRef<SoCube> const shared(new SoCube);
  std::vector<SoRef<SoSeparator>> parents;
  for (int i = 0; i < MANY; ++i) {
    parents.emplace_back(new SoSeparator);
    parents.back()->addChild(shared);
  }
  for (int i = 0; i < MANY; i += 2) parents[i].reset();
  EXPECT_EQ(shared->getAuditors().getLength(), MANY / 2);
  for (int i = 1; i < MANY; i += 2) parents[i].reset();
  EXPECT_EQ(shared->getAuditors().getLength(), 0);
}
