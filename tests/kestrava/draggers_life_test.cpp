// What happens around a drag: callbacks, connections, several places, a graph that changes meanwhile, files.

#include "draggers_helpers.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/draggers/SoTranslate1Dragger.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"

using namespace dragger_test;

namespace {

SoSeparator* top(Rig& rig) { return static_cast<SoSeparator*>(rig.root.get()); }

TEST(DraggersLife, TellsInOrder) {
  Rig rig("DEF d Translate1Dragger { }");
  std::string told;
  struct Note {
    std::string* told;
    char letter;
  } notes[] = {{&told, 's'}, {&told, 'm'}, {&told, 'f'}, {&told, 'v'}};
  auto const note = [](void* data, SoDragger* dragger) {
    auto* n = static_cast<Note*>(data);
    *n->told += n->letter;
    EXPECT_EQ(dragger->isActive.getValue(), n->letter == 's' || n->letter == 'm') << n->letter;
  };
  SoDragger* const dragger = rig.get();
  dragger->addStartCallback(note, &notes[0]);
  dragger->addMotionCallback(note, &notes[1]);
  dragger->addFinishCallback(note, &notes[2]);
  SbVec2s const from = rig.pixelOf(SbVec3f(0.5f, 0, 0));
  EXPECT_FALSE(rig.press(rig.pixelOf(SbVec3f(0.5f, 1, 0))));
  rig.press(from);
  EXPECT_EQ(told, "s");
  rig.move(SbVec2s(300, 200));
  rig.release(SbVec2s(310, 200));
  EXPECT_EQ(told, "smmf");
  dragger->removeMotionCallback(note, &notes[1]);
  dragger->removeStartCallback(note, &notes[0]);
  dragger->removeFinishCallback(note, &notes[2]);
  notes[3].letter = 'v';
  dragger->addValueChangedCallback([](void* data, SoDragger*) { *static_cast<std::string*>(data) += 'v'; },
                                   &told);
  static_cast<SoTranslate1Dragger*>(dragger)->translation = SbVec3f(-0.5f, 0, 0);
  EXPECT_EQ(told, "smmfv");
  // What a program has set has moved the handles.
  EXPECT_FALSE(rig.press(rig.pixelOf(SbVec3f(0.7f, 0, 0))));
  ASSERT_TRUE(rig.press(rig.pixelOf(SbVec3f(-1.2f, 0, 0))));
  EXPECT_TRUE(rig.get()->getLocalStartingPoint().equals(SbVec3f(-1.2f, 0, 0), 0.1f));
}

TEST(DraggersLife, EscapePutsEverythingBack) {
  Rig rig("DEF d Translate2Dragger { translation 0.1 0.2 0 }");
  SoPlacement const before = rig.get()->getPlacement();
  ASSERT_TRUE(rig.press(rig.pixelOf(SbVec3f(0.6f, 0.2f, 0))));
  rig.move(SbVec2s(50, 60));
  EXPECT_FALSE(isNear(rig.get()->getPlacement(), before, 0.1f));
  EXPECT_TRUE(rig.escape());
  EXPECT_TRUE(isNear(rig.get()->getPlacement(), before, 0));
  EXPECT_FALSE(rig.get()->isActive.getValue());
  EXPECT_FALSE(rig.move(SbVec2s(70, 70)));
}

TEST(DraggersLife, TheHandleUnderThePointerShowsIt) {
  Rig rig("DEF d DragPointDragger { }");
  auto const look = [&](char const* part) {
    return static_cast<SoDraggerHandle*>(rig.get()->getPart(part, false))->look.getValue();
  };
  SbVec2s const arrow = rig.pixelOf(SbVec3f(0.7f, 0, 0));
  EXPECT_FALSE(rig.move(arrow));
  EXPECT_EQ(look("xTranslator"), SoDraggerHandle::POINTED_AT);
  rig.move(rig.pixelOf(SbVec3f(0, 0.7f, 0)));
  EXPECT_EQ(look("xTranslator"), SoDraggerHandle::NORMAL);
  EXPECT_EQ(look("yTranslator"), SoDraggerHandle::POINTED_AT);
  rig.press(arrow);
  EXPECT_EQ(look("xTranslator"), SoDraggerHandle::ACTIVE);
  EXPECT_EQ(look("yTranslator"), SoDraggerHandle::NORMAL);
  rig.release(arrow);
  EXPECT_EQ(look("xTranslator"), SoDraggerHandle::POINTED_AT);
  rig.move(SbVec2s(-1, 30));
  EXPECT_EQ(look("xTranslator"), SoDraggerHandle::NORMAL) << "the pointer has left the view";
}

TEST(DraggersLife, DragsThePlaceThatWasPicked) {
  // The second place is turned by a right angle and half as large.
  Rig rig(
      "DEF d Translate1Dragger { } Separator { Transform { translation 0 1 0 rotation 0 0 1 1.5707963 "
      "scaleFactor 0.5 0.5 0.5 } USE d }");
  SbVec2s const from = rig.pixelOf(SbVec3f(0, 1.4f, 0));
  ASSERT_TRUE(rig.drag(from, SbVec2s(static_cast<short>(from[0] + 80), static_cast<short>(from[1] + 50))));
  EXPECT_TRUE(rig.get()->getPlacement().translation.equals(SbVec3f(1, 0, 0), 1e-3f));
}

TEST(DraggersLife, FollowsAndIsFollowed) {
  Rig rig(
      "DEF d Translate1Dragger { } Separator { Translation { translation 0 1 0 } DEF e Translate2Dragger { "
      "translation 0 0 0 = d.translation } }");
  ASSERT_TRUE(rig.drag(rig.pixelOf(SbVec3f(0.5f, 0, 0)), rig.pixelOf(SbVec3f(1, 0, 0))));
  EXPECT_TRUE(rig.get("e")->getPlacement().translation.equals(SbVec3f(0.5f, 0, 0), 1e-3f));
  EXPECT_TRUE(rig.press(rig.pixelOf(SbVec3f(0.5f, 1.6f, 0))));
}

TEST(DraggersLife, MayBeTakenAwayByItsOwnCallback) {
  for (bool const inStart : {true, false}) {
    Rig rig("DEF d Translate1Dragger { }");
    int finished = 0;
    auto const takeAway = [](void* data, SoDragger* dragger) {
      auto* group = static_cast<SoSeparator*>(data);
      if (group->findChild(dragger) >= 0) group->removeChild(dragger);
    };
    if (inStart) {
      rig.get()->addStartCallback(takeAway, top(rig));
    } else {
      rig.get()->addMotionCallback(takeAway, top(rig));
    }
    rig.get()->addFinishCallback([](void* data, SoDragger*) { ++*static_cast<int*>(data); }, &finished);
    ASSERT_TRUE(rig.press(rig.pixelOf(SbVec3f(0.5f, 0, 0))));
    rig.move(SbVec2s(300, 200));
    EXPECT_FALSE(rig.move(SbVec2s(310, 200)));
    EXPECT_FALSE(rig.get()); // nobody holds it
    EXPECT_EQ(finished, inStart ? 0 : 1);
  }
}

TEST(DraggersLife, ADragEndsWithItsPlace) {
  Rig rig("Separator { DEF g Separator { DEF d Translate1Dragger { } } }");
  SoRef<SoDragger> const dragger(rig.get());
  ASSERT_TRUE(rig.press(rig.pixelOf(SbVec3f(0.5f, 0, 0))));
  rig.move(SbVec2s(260, 200));
  SbVec3f const then = dragger->getPlacement().translation;
  // A sibling that comes in between changes nothing.
  auto* group = rig.get<SoSeparator>("g");
  group->insertChild(new SoTransform, 0);
  rig.move(SbVec2s(270, 200));
  EXPECT_FALSE(dragger->getPlacement().translation.equals(then, 0.05f));
  SbVec3f const before = dragger->getPlacement().translation;
  group->removeAllChildren();
  rig.move(SbVec2s(350, 200));
  EXPECT_TRUE(dragger->getPlacement().translation.equals(before, 0));
  EXPECT_FALSE(dragger->isActive.getValue());
  EXPECT_FALSE(rig.move(SbVec2s(360, 200)));
}

TEST(DraggersLife, WhatIsNotHandledGoesOn) {
  // Not pickable, invisible, flattened: nobody takes the press.
  for (char const* above : {"PickStyle { style UNPICKABLE } ", "DrawStyle { style INVISIBLE } ",
                            "Scale { scaleFactor 1 1 0 } "}) {
    Rig rig(above + std::string("DEF d RotateSphericalDragger { }"));
    EXPECT_FALSE(rig.press(SbVec2s(230, 220))) << above;
  }
}

TEST(DraggersLife, IsWrittenWithoutItsHandles) {
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoDragger::getClassTypeId()) || !type.canCreateInstance()) continue;
    SoRef<SoDragger> const dragger(static_cast<SoDragger*>(SoNode::create(type)));
    SoPlacement placement;
    placement.translation = SbVec3f(1, 2, 3);
    placement.rotation = SbRotation(SbVec3f(0, 1, 0), 0.5f);
    placement.scaleFactor = SbVec3f(2, 3, 4);
    placement.angle = 0.7f;
    dragger->setPlacement(placement);
    std::string const text = io_test::writeText(dragger);
    EXPECT_EQ(text.find("DraggerHandle"), std::string::npos) << text;
    // A file's only node comes back below a group.
    SoRef<SoNode> const file(readText(text));
    SoNode* const read = file && file->getChildren()->getLength() == 1 ? (*file->getChildren())[0] : nullptr;
    ASSERT_TRUE(read && read->getTypeId() == type) << text;
    EXPECT_TRUE(isNear(static_cast<SoDragger*>(read)->getPlacement(), dragger->getPlacement(), 0)) << text;
  }
}

} // namespace
