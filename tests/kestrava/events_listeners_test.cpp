// Events reach everybody who listens, although what does not listen is passed by.

#include "kestrava/actions/SoGetMatrixAction.h"
#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "node_helpers.h"

namespace {

/// A listener that notes where it stands.
class Listener {
 public:
  Listener() {
    node->addEventCallback(
        SoEvent::getClassTypeId(),
        [](void* data, SoEventCallback* called) {
          auto* const self = static_cast<Listener*>(data);
          ++self->count;
          self->x = called->getAction()->getState().get<SoModelMatrixElement>().matrix[3][0];
        },
        this);
  }
  SoRef<SoEventCallback> node{new SoEventCallback};
  int count = 0;
  float x = 0;
};

SoTranslation* move(float x) {
  auto* const translation = new SoTranslation;
  translation->translation = SbVec3f(x, 0, 0);
  return translation;
}

struct Offer {
  void operator()(SoNode* root) {
    SoLocation2Event event;
    action.setEvent(&event);
    action.apply(root);
  }
  SoHandleEventAction action;
};

TEST(EventsListeners, AreFoundWithTheStateThatTheyStandIn) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const silent = new SoSeparator;
  auto* const group = new SoGroup;
  auto* const last = new SoSeparator;
  silent->addChild(move(100));
  silent->addChild(new SoCube);
  group->addChild(silent);
  group->addChild(move(2));
  group->addChild(silent);
  for (SoNode* node :
       {static_cast<SoNode*>(silent), static_cast<SoNode*>(move(1)), static_cast<SoNode*>(group),
        static_cast<SoNode*>(silent), static_cast<SoNode*>(last)}) {
    root->addChild(node);
  }
  last->addChild(move(4));
  Offer offer;
  offer(root);
  Listener inLast, inSilent, atEnd;
  last->addChild(inLast.node);
  last->addChild(move(8));
  offer(root);
  EXPECT_EQ(inLast.count, 1) << "it came after the first look";
  EXPECT_EQ(inLast.x, 7) << "what a group in front does counts, what a separator does not";
  // At four places from now on.
  silent->addChild(inSilent.node);
  root->addChild(atEnd.node);
  offer(root);
  EXPECT_EQ(inSilent.count, 4);
  EXPECT_EQ(inLast.count, 2);
  EXPECT_EQ(atEnd.x, 3);
  silent->removeChild(inSilent.node.get());
  offer(root);
  EXPECT_EQ(inSilent.count, 4);
  EXPECT_EQ(atEnd.count, 2);
}

TEST(EventsListeners, CamerasAndFunctionsOfTheProgramCount) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const inner = new SoSeparator;
  auto* const camera = new SoPerspectiveCamera;
  auto* const callback = new SoCallback;
  int calls = 0;
  callback->setCallback([](void* data, SoAction*) { ++*static_cast<int*>(data); }, &calls);
  camera->position = SbVec3f(0, 0, 9);
  root->addChild(inner);
  inner->addChild(camera);
  Offer offer;
  offer(root);
  EXPECT_EQ(offer.action.getViewVolume().getProjectionPoint(), SbVec3f(0, 0, 9));
  SoRef<SoCamera> const other(new SoPerspectiveCamera);
  other->position = SbVec3f(0, 0, 3);
  offer.action.setCamera(other);
  offer(root);
  EXPECT_EQ(offer.action.getViewVolume().getProjectionPoint(), SbVec3f(0, 0, 3));
  offer.action.setCamera(nullptr);
  offer(root);
  EXPECT_EQ(offer.action.getViewVolume().getProjectionPoint(), SbVec3f(0, 0, 9));
  EXPECT_EQ(calls, 0);
  inner->addChild(callback);
  offer(root);
  EXPECT_EQ(calls, 1);
}

TEST(EventsListeners, ALongChainOfSharedGroupsIsLookedAtOnce) {
  SoRef<SoSeparator> chain(new SoSeparator);
  chain->addChild(new SoCube);
  for (int i = 0; i < 60; ++i) {
    SoRef<SoSeparator> const above(new SoSeparator);
    above->addChild(chain);
    above->addChild(chain);
    chain = above;
  }
  Listener listener;
  SoRef<SoSeparator> const root(new SoSeparator);
  root->addChild(chain);
  root->addChild(listener.node);
  Offer offer;
  offer(root);
  EXPECT_EQ(listener.count, 1);
}

} // namespace
