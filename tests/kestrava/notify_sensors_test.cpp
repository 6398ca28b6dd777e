#include <memory>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoIdleSensor.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

void count(void* data, SoSensor*) { ++*static_cast<int*>(data); }

} // namespace

TEST(NotifySensors, MayBeDetachedAndDestroyedInsideACallback) {
  SoRef<SoCube> const cube(new SoCube);
  struct Both {
    std::unique_ptr<SoNodeSensor> first, second;
    int calls = 0;
  } both;
  // Whichever is called first destroys the other one and itself.
  auto destroyBoth = [](void* data, SoSensor*) {
    auto* b = static_cast<Both*>(data);
    ++b->calls;
    b->first.reset();
    b->second.reset();
  };
  both.first = std::make_unique<SoNodeSensor>(destroyBoth, &both);
  both.second = std::make_unique<SoNodeSensor>(destroyBoth, &both);
  for (auto* sensor : {both.first.get(), both.second.get()}) {
    sensor->setPriority(0);
    sensor->attach(cube);
  }
  cube->width = 3.0f;
  EXPECT_EQ(both.calls, 1);
  cube->width = 4.0f;
  EXPECT_EQ(both.calls, 1);
  EXPECT_EQ(cube->getAuditors().getLength(), 0);
}

// The way to a change is told as it was at the change, whatever the functions that are called do with the graph.
TEST(NotifySensors, TellTheWayAsItWas) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const group = new SoSeparator;
  SoRef<SoTransform> const changed(new SoTransform);
  root->addChild(new SoCube);
  root->addChild(group);
  group->addChild(changed);
  struct Seen {
    SoSeparator* group;
    SoNodeSensor* sensor;
    std::vector<int> early, late;
    bool busy = false;
    static std::vector<int> way(SoPath* path) {
      std::vector<int> indices;
      for (int i = 1; path && i < path->getLength(); ++i) indices.push_back(path->getIndex(i));
      return indices;
    }
  };
  auto look = [](void* data, SoSensor*) {
    auto& seen = *static_cast<Seen*>(data);
    if (seen.busy) return;
    seen.busy = true;
    seen.early = Seen::way(seen.sensor->getTriggerPath());
    seen.group->removeAllChildren();
    seen.late = Seen::way(seen.sensor->getTriggerPath());
  };
  auto removeFirst = [](void* data, SoSensor* sensor) {
    auto& seen = *static_cast<Seen*>(data);
    if (static_cast<SoNodeSensor*>(sensor)->getTriggerType() == SoNotification::UNSPECIFIED) {
      seen.busy = true;
      seen.group->insertChild(new SoCube, 0);
      seen.busy = false;
    }
  };
  Seen seen{group, nullptr, {}, {}};
  // This one is called first, and puts a node before the changed one.
  SoNodeSensor other(removeFirst, &seen), sensor(look, &seen);
  seen.sensor = &sensor;
  sensor.setTriggerPathFlag(true);
  for (SoNodeSensor* s : {&other, &sensor}) {
    s->setPriority(0);
    s->attach(root);
  }
  changed->translation = SbVec3f(1, 0, 0);
  EXPECT_EQ(seen.early, (std::vector<int>{1, 0}));
  EXPECT_EQ(seen.late, seen.early);
  EXPECT_EQ(sensor.getTriggerPath(), nullptr) << "it stands while the function runs";
}

TEST(NotifySensors, OutliveWhatTheyWatch) {
  auto* cube = new SoCube;
  cube->ref();
  int deaths = 0;
  SoNodeSensor onNode;
  SoFieldSensor onField;
  onNode.setDeleteCallback(count, &deaths);
  onField.setDeleteCallback(count, &deaths);
  onNode.attach(cube);
  onField.attach(&cube->width);
  cube->width = 5.0f; // schedules both
  cube->unref();
  EXPECT_EQ(deaths, 2);
  EXPECT_EQ(onNode.getAttachedNode(), nullptr);
  EXPECT_EQ(onField.getAttachedField(), nullptr);
  EXPECT_FALSE(onNode.isScheduled() || onField.isScheduled());
  onNode.detach();
  onField.detach();
}

TEST(NotifySensors, WaitingSensorsAreCalledOnceForManyChanges) {
  SoRef<SoCube> const cube(new SoCube);
  int calls = 0;
  SoNodeSensor sensor(count, &calls);
  sensor.attach(cube);
  for (int i = 0; i < 10; ++i) cube->width = static_cast<float>(i);
  EXPECT_EQ(calls, 0);
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(calls, 1);
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(calls, 1);
  cube->width = 1.0f;
  sensor.unschedule();
  SoSensorManager::processDelayQueue(true);
  EXPECT_EQ(calls, 1);
}

TEST(NotifySensors, AnIdleSensorThatSchedulesItselfGetsOneCallAPass) {
  struct Again {
    int calls = 0;
    SoIdleSensor sensor{[](void* data, SoSensor* s) {
                          ++static_cast<Again*>(data)->calls;
                          s->schedule();
                        },
                        this};
  } again;
  again.sensor.schedule();
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(again.calls, 0) << "there was no idle time";
  for (int pass = 1; pass <= 3; ++pass) {
    SoSensorManager::processDelayQueue(true);
    EXPECT_EQ(again.calls, pass);
  }
  EXPECT_TRUE(SoSensorManager::hasPending(true));
  again.sensor.unschedule();
  EXPECT_FALSE(SoSensorManager::hasPending(true));
  {
    SoIdleSensor gone(count, &again.calls);
    gone.schedule();
  }
  SoSensorManager::processDelayQueue(true);
  EXPECT_EQ(again.calls, 3);
}

TEST(NotifyConnections, ValuesAreFetchedWhenSomebodyReads) {
  SoRef<SoCube> const cube(new SoCube);
  SoRef<SoSphere> const sphere(new SoSphere);
  int calls = 0;
  SoFieldSensor sensor(count, &calls);
  sensor.setPriority(0);
  sensor.attach(&sphere->radius);
  ASSERT_TRUE(sphere->radius.connectFrom(&cube->width));
  EXPECT_EQ(sphere->radius.getValue(), 2);
  calls = 0;
  cube->width = 7.0f;
  EXPECT_EQ(calls, 1) << "followers hear of the change";
  EXPECT_TRUE(sphere->radius.needsEvaluation());
  EXPECT_EQ(sphere->radius.getValue(), 7);
  EXPECT_FALSE(sphere->radius.needsEvaluation());
  // Along a chain, too.
  SoRef<SoCube> const third(new SoCube);
  ASSERT_TRUE(third->depth.connectFrom(&sphere->radius));
  cube->width = 9.0f;
  EXPECT_EQ(third->depth.getValue(), 9);
  sphere->radius.disconnect();
  cube->width = 1.0f;
  EXPECT_EQ(third->depth.getValue(), 9);
}

TEST(NotifyConnections, LoopsAreRefusedAndSourcesMayDie) {
  DebugErrors errors;
  SoRef<SoCube> const a(new SoCube), b(new SoCube);
  ASSERT_TRUE(b->width.connectFrom(&a->width));
  EXPECT_FALSE(a->width.connectFrom(&b->width));
  EXPECT_FALSE(a->width.connectFrom(&a->width));
  EXPECT_FALSE(a->width.isConnected());
  EXPECT_EQ(errors.texts.size(), 2u);
  {
    SoRef<SoSphere> const source(new SoSphere);
    ASSERT_TRUE(a->height.connectFrom(&source->radius));
    source->radius = 6.0f;
    EXPECT_EQ(a->height.getValue(), 6);
  }
  EXPECT_FALSE(a->height.isConnected());
  EXPECT_EQ(a->height.getValue(), 6);
}

TEST(NotifyConnections, BoundsFollow) {
  SoRef<SoTransform> const source(new SoTransform), follower(new SoTransform);
  ASSERT_TRUE(follower->translation.connectFrom(&source->translation));
  SoRef<SoSeparator> const root(new SoSeparator);
  root->addChild(follower);
  root->addChild(new SoCube);
  EXPECT_TRUE(isNear(boundsOf(root), box(-1, -1, -1, 1, 1, 1)));
  source->translation = SbVec3f(10, 0, 0);
  EXPECT_TRUE(isNear(boundsOf(root), box(9, -1, -1, 11, 1, 1)));
}
