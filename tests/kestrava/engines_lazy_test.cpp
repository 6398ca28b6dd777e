// When engines compute, who hears of it, and how long they live.

#include "kestrava/engines/SoComputeBoundingBox.h"
#include "kestrava/engines/SoDecomposeVec3f.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "node_helpers.h"

using namespace node_test;

namespace engines_lazy_test {

/// Adds one, and counts how often it does and how many of its kind there are.
class Successor : public SoEngine {
  SO_ENGINE(Successor, SoEngine)
  Successor() { ++alive; }
  SoSFFloat input{this, "input", 0.f};
  SoSFFloat other{this, "other", 0.f};
  SoSFFloat output{this, "output", 0.f, SoField::EVENT_OUT};
  static inline int alive = 0, evaluations = 0;

 protected:
  ~Successor() override { --alive; }
  void evaluate() override {
    ++evaluations;
    output.setValue(std::max(input.getValue(), other.getValue()) + 1);
  }
};

} // namespace engines_lazy_test

using engines_lazy_test::Successor;

TEST(EnginesLazy, ComputeOnceWhenSomebodyReads) {
  SoRef<SoCube> const cube(new SoCube), follower(new SoCube);
  auto* engine = new Successor;
  ASSERT_TRUE(engine->input.connectFrom(&cube->width));
  ASSERT_TRUE(follower->height.connectFrom(&engine->output));
  Successor::evaluations = 0;
  Listener listener(follower);
  cube->width = 5.f;
  cube->width = 6.f;
  EXPECT_EQ(Successor::evaluations, 0);
  auto const calls = listener.take();
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].field, &follower->height);
  EXPECT_TRUE(follower->height.needsEvaluation());
  EXPECT_EQ(follower->height.getValue(), 7);
  EXPECT_EQ(engine->output.getValue(), 7);
  EXPECT_EQ(Successor::evaluations, 1);
  EXPECT_TRUE(listener.take().empty()) << "reading tells nobody";
}

TEST(EnginesLazy, EverybodyIsMarkedBeforeAnybodyIsTold) {
  SoRef<SoCube> const cube(new SoCube), left(new SoCube), right(new SoCube);
  auto* engine = new Successor;
  engine->input.connectFrom(&cube->width);
  left->width.connectFrom(&engine->output);
  right->width.connectFrom(&left->width);
  struct Seen {
    SoCube *left, *right;
    std::vector<float> values;
  } seen{left, right, {}};
  SoFieldSensor sensor(
      [](void* data, SoSensor*) {
        auto* s = static_cast<Seen*>(data);
        s->values.push_back(s->left->width.getValue());
        s->values.push_back(s->right->width.getValue());
      },
      &seen);
  sensor.setPriority(0);
  sensor.attach(&cube->width);
  cube->width = 10.f;
  EXPECT_EQ(seen.values, (std::vector<float>{11, 11}));
}

TEST(EnginesLazy, AChangeComesByOnceAlongHoweverManyWays) {
  // Each engine follows the one before twice: a walk along all ways would take 2^60 steps.
  SoRef<SoCube> const cube(new SoCube), end(new SoCube);
  SoField* source = &cube->width;
  for (int i = 0; i < 60; ++i) {
    auto* engine = new Successor;
    engine->input.connectFrom(source);
    engine->other.connectFrom(source);
    source = &engine->output;
  }
  end->width.connectFrom(source);
  EXPECT_EQ(end->width.getValue(), 62);
  Successor::evaluations = 0;
  Listener listener(end);
  cube->width = 0.f;
  EXPECT_EQ(listener.take().size(), 1u);
  EXPECT_EQ(end->width.getValue(), 60);
  EXPECT_EQ(Successor::evaluations, 60);
}

TEST(EnginesLazy, LongChainsCostNoStack) {
  constexpr int LENGTH = 30'000;
  Successor::alive = 0;
  SoRef<SoCube> const cube(new SoCube), end(new SoCube);
  SoField* source = &cube->width;
  for (int i = 0; i < LENGTH; ++i) {
    auto* engine = new Successor;
    engine->input.connectFrom(source);
    source = &engine->output;
  }
  end->width.connectFrom(source);
  cube->width = 1.f;
  EXPECT_EQ(end->width.getValue(), LENGTH + 1);
  EXPECT_EQ(Successor::alive, LENGTH);
  end->width.disconnect();
  EXPECT_EQ(Successor::alive, 0);
  EXPECT_EQ(end->width.getValue(), LENGTH + 1) << "the value stays";
  EXPECT_FALSE(cube->width.hasFollowers());
}

TEST(EnginesLazy, LiveByTheirConnections) {
  Successor::alive = 0;
  SoRef<SoCube> const cube(new SoCube);
  {
    SoRef<SoCube> const dies(new SoCube);
    auto* engine = new Successor;
    dies->width.connectFrom(&engine->output);
    cube->width.connectFrom(&engine->output);
    EXPECT_EQ(engine->getRefCount(), 2);
  }
  EXPECT_EQ(Successor::alive, 1);
  auto* next = new Successor;
  next->input.connectFrom(cube->width.getConnectedField());
  EXPECT_TRUE(cube->width.connectFrom(&next->output)) << "the old source lives on through the new one";
  EXPECT_EQ(Successor::alive, 2);
  cube->width.disconnect();
  EXPECT_EQ(Successor::alive, 0);

  // A source that dies leaves its engine with the last value.
  auto* engine = new Successor;
  cube->width.connectFrom(&engine->output);
  {
    SoRef<SoCube> const source(new SoCube);
    source->depth = 41.f;
    engine->input.connectFrom(&source->depth);
    EXPECT_EQ(cube->width.getValue(), 42);
  }
  EXPECT_FALSE(engine->input.isConnected());
  EXPECT_EQ(cube->width.getValue(), 42);
}

TEST(EnginesLazy, LoopsAndOutputsThatFollowAreRefused) {
  SoRef<Successor> const first(new Successor), second(new Successor);
  ASSERT_TRUE(second->input.connectFrom(&first->output));
  DebugErrors errors;
  EXPECT_FALSE(first->input.connectFrom(&second->output));
  EXPECT_FALSE(first->other.connectFrom(&first->output));
  EXPECT_FALSE(first->input.connectFrom(nullptr));
  EXPECT_FALSE(second->output.connectFrom(&first->output));
  ASSERT_EQ(errors.texts.size(), 4u);
  EXPECT_NE(errors.texts[0].find("loop"), std::string::npos) << errors.texts[0];
  EXPECT_NE(errors.texts[1].find("loop"), std::string::npos) << errors.texts[1];
  EXPECT_NE(errors.texts[3].find("output"), std::string::npos) << errors.texts[3];
  EXPECT_TRUE(second->input.isConnected());
  // Through a node too.
  SoRef<SoCube> const cube(new SoCube);
  ASSERT_TRUE(cube->width.connectFrom(&second->output));
  EXPECT_FALSE(first->input.connectFrom(&cube->width));
  EXPECT_TRUE(first->input.connectFrom(&cube->height)) << "another field of the node is no loop";
}

TEST(EnginesLazy, FollowersMayGoWhileTheyAreTold) {
  SoRef<SoCube> const cube(new SoCube);
  struct Doomed {
    SoRef<SoCube> first{new SoCube}, second{new SoCube};
    int calls = 0;
  } doomed;
  auto* engine = new Successor;
  engine->input.connectFrom(&cube->width);
  doomed.first->width.connectFrom(&engine->output);
  doomed.second->width.connectFrom(&engine->output);
  auto const release = [](void* data, SoSensor*) {
    auto* d = static_cast<Doomed*>(data);
    ++d->calls;
    d->first.reset();
    d->second.reset();
  };
  SoFieldSensor onFirst(release, &doomed), onSecond(release, &doomed);
  for (auto* sensor : {&onFirst, &onSecond}) sensor->setPriority(0);
  onFirst.attach(&doomed.first->width);
  onSecond.attach(&doomed.second->width);
  cube->width = 3.f;
  EXPECT_EQ(doomed.calls, 1);
  EXPECT_FALSE(cube->width.hasFollowers());
}

TEST(EnginesLazy, BoxesFollowTheGraphBelow) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* place = new SoTranslation;
  auto* cube = new SoCube;
  root->addChild(place);
  root->addChild(cube);
  SoRef<SoTransform> const marker(new SoTransform);
  auto* engine = new SoComputeBoundingBox;
  engine->node.setValue(root);
  marker->translation.connectFrom(&engine->max);
  EXPECT_EQ(marker->translation.getValue(), SbVec3f(1, 1, 1));
  Listener listener(marker);
  place->translation = SbVec3f(5, 0, 0);
  EXPECT_EQ(listener.take().size(), 1u);
  EXPECT_EQ(marker->translation.getValue(), SbVec3f(6, 1, 1));
  EXPECT_EQ(engine->boxCenter.getValue(), SbVec3f(5, 0, 0));

  // What is computed leads back below the node: it settles, and everybody is told a finite number of times.
  auto* apart = new SoDecomposeVec3f;
  apart->vector.connectFrom(&engine->max);
  cube->width.connectFrom(&apart->y);
  Listener reader(root);
  place->translation = SbVec3f(7, 0, 0);
  EXPECT_LT(reader.take().size(), 10u);
  EXPECT_GE(cube->width.getValue(), 1);
  cube->width.disconnect();

  SoRef<SoPath> const path(new SoPath(root));
  path->append(1);
  engine->node.setValue(nullptr);
  engine->path.setValue(path);
  cube->width = 4.f;
  place->translation = SbVec3f(1, 0, 0);
  EXPECT_EQ(marker->translation.getValue(), SbVec3f(3, 1, 1)) << "the tail in the coordinates of the head";
}
