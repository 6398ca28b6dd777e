#include <functional>

#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/events/SoKeyboardEvent.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/render/SoSceneManager.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

/// 100 x 100 pixels that show -2 to 2 in x and y, looking along -z from z = 10.
std::string const CAMERA = "OrthographicCamera { position 0 0 10 height 4 nearDistance 1 farDistance 20 } ";

/// Calls a function of the test for every event that comes to a node.
struct Hook {
  Hook(SoNode* node, std::function<void(SoEventCallback&)> call, SoType type = SoEvent::getClassTypeId())
      : function(std::move(call)) {
    static_cast<SoEventCallback*>(node)->addEventCallback(type, called, this);
  }
  static void called(void* data, SoEventCallback* node) {
    auto* const self = static_cast<Hook*>(data);
    ++self->calls;
    if (self->function) self->function(*node);
  }
  std::function<void(SoEventCallback&)> function;
  int calls = 0;
};

SoNode* childOf(SoNode* node, std::initializer_list<int> indices) {
  for (int index : indices) node = (*node->getChildren())[index];
  return node;
}

bool offer(SoHandleEventAction& action, SoEvent& event, SoNode* root, short x = 50, short y = 50) {
  event.position = SbVec2s(x, y);
  action.setEvent(&event);
  action.apply(root);
  action.setEvent(nullptr);
  return action.isHandled();
}

TEST(EventsAction, ComesInOrderUntilHandled) {
  SoRef<SoNode> const root(
      readText("Separator { EventCallback { } Switch { whichChild 1 EventCallback { } EventCallback { } } "
               "EventCallback { } }"));
  std::string order;
  bool handles = false;
  Hook const first(childOf(root, {0}), [&](auto&) { order += '1'; });
  Hook const hidden(childOf(root, {1, 0}), [&](auto&) { order += '2'; });
  Hook const shown(childOf(root, {1, 1}), [&](SoEventCallback& node) {
    order += '3';
    if (handles) node.setHandled();
  });
  Hook const second(childOf(root, {1, 1}),
                    [&](SoEventCallback& node) { order += node.isHandled() ? 'h' : 'n'; });
  Hook const last(childOf(root, {2}), [&](auto&) { order += '4'; });
  Hook const keys(
      childOf(root, {0}), [&](auto&) { order += 'k'; }, SoKeyboardEvent::getClassTypeId());

  SoHandleEventAction action(SbViewportRegion(100, 100));
  SoLocation2Event move;
  EXPECT_FALSE(offer(action, move, root));
  EXPECT_EQ(std::exchange(order, ""), "13n4");
  handles = true;
  SoKeyboardEvent key;
  EXPECT_TRUE(offer(action, key, root));
  EXPECT_EQ(std::exchange(order, ""), "1k3h");
  // Without an event nobody is called, and nothing of the last one is left.
  action.apply(root);
  EXPECT_FALSE(action.isHandled());
  EXPECT_EQ(order, "");
}

TEST(EventsAction, PicksOnceInTheCoordinatesOfTheRoot) {
  SoRef<SoNode> const root(
      readText("Separator { " + CAMERA +
               "Separator { Translation { translation 1 0 0 } EventCallback { } Cube { } } }"));
  SoPickedPoint const* found[2] = {};
  SbVec3f point;
  Hook const hook(childOf(root, {1, 1}), [&](SoEventCallback& node) {
    for (auto& each : found) each = node.getAction()->getPickedPoint();
    if (found[0]) point = found[0]->getPoint();
    EXPECT_EQ(node.getAction()->getPickRoot(), root.get());
    EXPECT_NEAR(node.getAction()->getViewVolume().getHeight(), 4, 1e-5f);
  });
  SoHandleEventAction action(SbViewportRegion(100, 100));
  SoLocation2Event move;
  offer(action, move, root, 75, 50);
  ASSERT_TRUE(found[0]);
  EXPECT_EQ(found[0], found[1]);
  EXPECT_LT((point - SbVec3f(1.02f, 0.02f, 1)).length(), 1e-3f);
  offer(action, move, root, 20, 50);
  EXPECT_FALSE(found[0]);

  // A camera outside stands for the one inside.
  SoRef<SoOrthographicCamera> const outside(new SoOrthographicCamera);
  outside->height = 40;
  outside->position = SbVec3f(0, 0, 30);
  action.setCamera(outside);
  Hook const other(childOf(root, {1, 1}), [&](SoEventCallback& node) {
    EXPECT_NEAR(node.getAction()->getViewVolume().getHeight(), 40, 1e-4f);
  });
  static_cast<SoEventCallback*>(childOf(root, {1, 1}))
      ->removeEventCallback(SoEvent::getClassTypeId(), Hook::called, const_cast<Hook*>(&hook));
  offer(action, move, root);
  EXPECT_EQ(other.calls, 1);
}

TEST(EventsAction, AGrabberAloneGetsEverything) {
  SoRef<SoNode> const root(readText("Separator { " + CAMERA + "EventCallback { } EventCallback { } }"));
  SoHandleEventAction action(SbViewportRegion(100, 100));
  float seenHeight = 0;
  Hook before(childOf(root, {1}), {});
  Hook grabber(childOf(root, {2}), [&](SoEventCallback& node) {
    if (SoMouseButtonEvent::isPress(*node.getEvent(), SoMouseButtonEvent::LEFT)) node.grabEvents();
    if (SoMouseButtonEvent::isRelease(*node.getEvent(), SoMouseButtonEvent::LEFT)) node.releaseEvents();
    seenHeight = node.getAction()->getViewVolume().getHeight();
    node.setHandled();
  });
  SoMouseButtonEvent press;
  press.button = SoMouseButtonEvent::LEFT;
  press.state = SoButtonEvent::DOWN;
  EXPECT_TRUE(offer(action, press, root));
  EXPECT_EQ(action.getGrabber(), childOf(root, {2}));
  SoLocation2Event move;
  EXPECT_TRUE(offer(action, move, root, 500, -30));
  EXPECT_EQ(before.calls, 1);
  EXPECT_EQ(grabber.calls, 2);
  // It looks through the camera as it is now.
  static_cast<SoOrthographicCamera*>(childOf(root, {0}))->height = 9;
  SoMouseButtonEvent release = press;
  release.state = SoButtonEvent::UP;
  EXPECT_TRUE(offer(action, release, root));
  EXPECT_NEAR(seenHeight, 9, 1e-4f);
  EXPECT_EQ(action.getGrabber(), nullptr);
  offer(action, move, root);
  EXPECT_EQ(before.calls, 2);
  // Only who grabs can release.
  action.setGrabber(childOf(root, {2}));
  action.releaseGrabber(childOf(root, {1}));
  EXPECT_EQ(action.getGrabber(), childOf(root, {2}));
  action.setGrabber(childOf(root, {1}));
  offer(action, move, root);
  EXPECT_EQ(before.calls, 3);
  EXPECT_EQ(grabber.calls, 4);
}

TEST(EventsAction, AGrabberThatGoesIsForgotten) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const node = new SoEventCallback;
  root->addChild(node);
  Hook hook(node, [&](SoEventCallback& self) {
    self.grabEvents();
    self.setHandled();
  });
  SoHandleEventAction action(SbViewportRegion(100, 100));
  SoLocation2Event move;
  EXPECT_TRUE(offer(action, move, root));
  root->removeAllChildren();
  EXPECT_EQ(action.getGrabber(), nullptr);
  EXPECT_FALSE(offer(action, move, root));
  // It may go while it is called, as grabber and in the traversal.
  for (bool const grabs : {false, true}) {
    auto* const leaving = new SoEventCallback;
    root->addChild(leaving);
    Hook leave(leaving, [&](SoEventCallback& self) {
      if (grabs && !self.getAction()->getGrabber()) {
        self.grabEvents();
        return;
      }
      root->removeAllChildren();
      self.setHandled();
    });
    offer(action, move, root);
    if (grabs) offer(action, move, root);
    EXPECT_EQ(leave.calls, grabs ? 2 : 1);
    EXPECT_EQ(action.getGrabber(), nullptr);
  }
}

TEST(EventsCallback, ListensAlongAPathOnly) {
  SoRef<SoNode> const root(
      readText("Separator { " + CAMERA +
               "EventCallback { } DEF shape Group { Cube { } } Translation { translation 0 0 5 } "
               "Separator { Translation { translation 1 0 0 } Cube { width 1 } } }"));
  auto* const node = static_cast<SoEventCallback*>(childOf(root, {1}));
  Hook hook(node, {});
  SoHandleEventAction action(SbViewportRegion(100, 100));
  SoLocation2Event move;
  struct Case {
    char const* what;
    std::vector<int> path; // from the root; empty: from the group alone
    short x;
    int calls;
  };
  for (Case const& c :
       {Case{"the group is under the pointer", {2}, 40, 1}, Case{"a part of the path is enough", {}, 40, 1},
        Case{"its child, exactly", {2, 0}, 40, 1}, Case{"another shape lies in front", {2}, 75, 0},
        Case{"nothing is there", {2}, 5, 0}, Case{"the other shape", {4, 1}, 75, 1}}) {
    SoRef<SoPath> const path(new SoPath(c.path.empty() ? childOf(root, {2}) : root.get()));
    for (int index : c.path) ASSERT_TRUE(path->append(index));
    node->path.setValue(path);
    hook.calls = 0;
    offer(action, move, root, c.x);
    EXPECT_EQ(hook.calls, c.calls) << c.what;
  }
  // A grabber does not ask what is picked.
  action.setGrabber(node);
  hook.calls = 0;
  offer(action, move, root, 5);
  EXPECT_EQ(hook.calls, 1);
  node->path.setValue(nullptr); // it begins above the node and would keep it
}

TEST(EventsCallback, FunctionsMayChangeTheList) {
  SoRef<SoEventCallback> const node(new SoEventCallback);
  SoHandleEventAction action;
  SoLocation2Event move;
  Hook* other = nullptr;
  Hook remover(node, [&](SoEventCallback& self) {
    self.removeEventCallback(SoEvent::getClassTypeId(), Hook::called, other);
    self.addEventCallback(SoEvent::getClassTypeId(), [](void*, SoEventCallback*) { FAIL(); });
  });
  Hook removed(node, {});
  other = &removed;
  offer(action, move, node);
  EXPECT_EQ(removed.calls, 0);
  EXPECT_EQ(node->getEventCallbacks().size(), 2u);
  // There is nothing to grab between events.
  DebugErrors errors;
  node->grabEvents();
  node->releaseEvents();
  EXPECT_EQ(errors.texts.size(), 2u);
  EXPECT_EQ(node->getEvent(), nullptr);
}

} // namespace

// Who makes an object and has not referenced it yet still has it after a call.
TEST(EventsAction, NobodysObjectsSurviveTheirOwnOperations) {
  SoRef<SoNode> const root(readText("Separator { Cube { } }"));
  int gone = 0;
  auto const watch = [&gone](SoNodeSensor& sensor, SoFieldContainer* object) {
    sensor.setPriority(0);
    sensor.setDeleteCallback([](void* data, SoSensor*) { ++*static_cast<int*>(data); }, &gone);
    sensor.attach(object);
  };
  SoNodeSensor managerSensor, selectionSensor;
  auto* manager = new SoSceneManager;
  watch(managerSensor, manager);
  manager->setSceneGraph(root);
  SoLocation2Event move;
  manager->processEvent(move);
  ASSERT_EQ(gone, 0);
  EXPECT_EQ(manager->getRefCount(), 0);

  auto* selection = new SoSelection;
  watch(selectionSensor, selection);
  selection->addChild(root);
  {
    SoRef<SoPath> const path(new SoPath(selection));
    path->append(0);
    selection->select(path);
    selection->ref();
  }
  selection->unrefNoDelete();
  selection->deselectAll();
  ASSERT_EQ(gone, 0);
  EXPECT_EQ(selection->getNumSelected(), 0);
  for (SoFieldContainer* object : std::initializer_list<SoFieldContainer*>{manager, selection}) {
    object->ref();
    object->unref();
  }
  EXPECT_EQ(gone, 2);
}
