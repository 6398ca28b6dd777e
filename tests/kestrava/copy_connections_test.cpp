// Where the connections of a copied graph lead.

#include "kestrava/engines/SoClock.h"
#include "kestrava/engines/SoComposeRotation.h"
#include "kestrava/engines/SoComputeBoundingBox.h"
#include "kestrava/engines/SoElapsedTime.h"
#include "kestrava/engines/SoGate.h"
#include "kestrava/engines/SoInterpolateFloat.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoTransform.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

SoRef<SoSeparator> copyOf(SoNode* node, bool copyConnections) {
  return SoRef<SoSeparator>(static_cast<SoSeparator*>(node->copy(copyConnections)));
}

/// The container that a field follows.
SoFieldContainer* sourceOf(SoField const& field) {
  return field.getConnectedField() ? field.getConnectedField()->getContainer() : nullptr;
}

} // namespace

TEST(CopyConnections, FromInsideAndFromOutside) {
  SoRef<SoSeparator> const root(new SoSeparator);
  SoRef<SoCube> const outside(new SoCube);
  auto* cube = new SoCube;
  auto* sphere = new SoSphere;
  root->addChild(sphere); // before its source
  root->addChild(cube);
  sphere->radius.connectFrom(&cube->width);
  cube->height.connectFrom(&outside->depth);
  outside->depth = 5.f;

  SoRef<SoSeparator> const plain = copyOf(root, false);
  EXPECT_FALSE(static_cast<SoSphere*>(plain->getChild(0))->radius.isConnected());
  EXPECT_EQ(static_cast<SoCube*>(plain->getChild(1))->height.getValue(), 5);

  SoRef<SoSeparator> const copy = copyOf(root, true);
  auto* const newSphere = static_cast<SoSphere*>(copy->getChild(0));
  auto* const newCube = static_cast<SoCube*>(copy->getChild(1));
  EXPECT_EQ(newSphere->radius.getConnectedField(), &newCube->width);
  EXPECT_EQ(newCube->height.getConnectedField(), &outside->depth);
  EXPECT_FALSE(newSphere->radius.isDefault());
  newCube->width = 3.f;
  outside->depth = 6.f;
  EXPECT_EQ(newSphere->radius.getValue(), 3);
  EXPECT_EQ(newCube->height.getValue(), 6);
  EXPECT_EQ(sphere->radius.getValue(), 2);
}

TEST(CopyConnections, EnginesThatBelongToTheGraphAreCopied) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* transform = new SoTransform;
  root->addChild(transform);
  auto* watch = new SoElapsedTime;
  auto* turn = new SoComposeRotation;
  turn->axis.setValue(SbVec3f(1, 0, 0));
  turn->angle.connectFrom(&watch->timeOut);
  transform->rotation.connectFrom(&turn->rotation);
  SoSFTime hand;
  hand.setValue(SbTime(10));
  watch->timeIn.connectFrom(&hand);
  transform->rotation.getValue();
  hand.setValue(SbTime(12));

  SoRef<SoSeparator> copy = copyOf(root, true);
  auto* const copied = static_cast<SoTransform*>(copy->getChild(0));
  auto* const newTurn = static_cast<SoComposeRotation*>(sourceOf(copied->rotation));
  ASSERT_TRUE(newTurn && newTurn != turn);
  auto* const newWatch = static_cast<SoElapsedTime*>(sourceOf(newTurn->angle));
  ASSERT_TRUE(newWatch && newWatch != watch);
  EXPECT_EQ(newWatch->timeIn.getConnectedField(), &hand);
  EXPECT_FALSE(newWatch->timeIn.isConnectionDefault());
  EXPECT_EQ(newTurn->getRefCount(), 1);
  EXPECT_EQ(copied->rotation.getValue(), SbRotation(SbVec3f(1, 0, 0), 2)) << "its state comes along";
  hand.setValue(SbTime(13));
  EXPECT_EQ(copied->rotation.getValue().getAngle(), 3);
  newWatch->speed = 0.f;
  hand.setValue(SbTime(20));
  EXPECT_EQ(copied->rotation.getValue().getAngle(), 3);
  EXPECT_EQ(transform->rotation.getValue().getAngle(), 10);
  std::size_t const followers = hand.getFollowers().size();
  copy.reset();
  EXPECT_EQ(hand.getFollowers().size(), followers - 1) << "its engines are gone with it";
}

TEST(CopyConnections, EnginesThatServeOthersTooAreShared) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* cube = new SoCube;
  root->addChild(cube);
  SoRef<SoCube> const outside(new SoCube);
  auto* before = new SoInterpolateFloat;
  auto* shared = new SoInterpolateFloat;
  auto* own = new SoInterpolateFloat;
  shared->input0.connectFrom(&before->output);
  own->input0.connectFrom(&shared->output);
  cube->width.connectFrom(&own->output);
  outside->width.connectFrom(&shared->output);
  SoRef<SoSeparator> copy = copyOf(root, true);
  auto* newOwn = static_cast<SoInterpolateFloat*>(sourceOf(static_cast<SoCube*>(copy->getChild(0))->width));
  ASSERT_TRUE(newOwn);
  EXPECT_NE(newOwn, own);
  EXPECT_EQ(sourceOf(newOwn->input0), shared);
  EXPECT_EQ(shared->getRefCount(), 3);

  // One that takes its values from inside is inside, whoever else follows it.
  shared->input1.connectFrom(&cube->height);
  copy = copyOf(root, true);
  auto* newCube = static_cast<SoCube*>(copy->getChild(0));
  newOwn = static_cast<SoInterpolateFloat*>(sourceOf(newCube->width));
  auto* newShared = static_cast<SoInterpolateFloat*>(sourceOf(newOwn->input0));
  ASSERT_TRUE(newShared && newShared != shared);
  EXPECT_EQ(newShared->input1.getConnectedField(), &newCube->height);
  EXPECT_EQ(sourceOf(outside->width), shared);
}

TEST(CopyConnections, EnginesLookAtTheCopyAndKeepTheirFields) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* cube = new SoCube;
  auto* marker = new SoTransform;
  root->addChild(cube);
  root->addChild(marker);
  auto* bounds = new SoComputeBoundingBox;
  bounds->node.setValue(cube);
  auto* gate = new SoGate;
  ASSERT_TRUE(gate->set("type SFVec3f enable TRUE"));
  gate->getInput()->connectFrom(&bounds->max);
  marker->translation.connectFrom(gate->getOutput());
  SoRef<SoSeparator> const copy = copyOf(root, true);
  auto* const newMarker = static_cast<SoTransform*>(copy->getChild(1));
  auto* const newGate = static_cast<SoGate*>(sourceOf(newMarker->translation));
  ASSERT_TRUE(newGate && newGate != gate && newGate->getInput());
  auto* const newBounds = static_cast<SoComputeBoundingBox*>(sourceOf(*newGate->getInput()));
  ASSERT_TRUE(newBounds && newBounds != bounds);
  EXPECT_EQ(newBounds->node.getValue(), copy->getChild(0));
  static_cast<SoCube*>(copy->getChild(0))->width = 8.f;
  EXPECT_EQ(newMarker->translation.getValue(), SbVec3f(4, 1, 1));
  EXPECT_EQ(marker->translation.getValue(), SbVec3f(1, 1, 1));
}

TEST(CopyConnections, OfAnEngineAlone) {
  SoRef<SoElapsedTime> const watch(new SoElapsedTime);
  watch->speed = 3.f;
  SoRef<SoElapsedTime> const copy(static_cast<SoElapsedTime*>(watch->copy()));
  EXPECT_EQ(copy->speed.getValue(), 3);
  EXPECT_EQ(copy->timeIn.getConnectedField(), &SoClock::getField());
  EXPECT_TRUE(copy->timeIn.isConnectionDefault() && copy->timeIn.isDefault());
  watch->timeIn.disconnect();
  SoRef<SoElapsedTime> const still(static_cast<SoElapsedTime*>(watch->copy()));
  EXPECT_FALSE(still->timeIn.isConnected());
}
