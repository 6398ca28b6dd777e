// Selecting by clicks.

#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoSelection.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

/// 100 x 100 pixels that show -2 to 2: a cube of 20 pixels left of the middle, one right of it, each in a
/// group, below a selection; and a bar along the upper edge beside the selection.
char const* const SCENE =
    "Separator { OrthographicCamera { position 0 0 10 height 4 nearDistance 1 farDistance 20 } "
    "DEF clicked Selection { EventCallback { } "
    "DEF left Separator { Translation { translation -1 0 0 } Cube { width 0.8 height 0.8 } } "
    "DEF right Separator { Translation { translation 1 0 0 } Cube { width 0.8 height 0.8 } } } "
    "Translation { translation 0 1.7 0 } Cube { width 4 height 0.4 } }";

constexpr short LEFT = 25, RIGHT = 75, NOTHING = 50;

class Clicks : public ::testing::Test {
 protected:
  Clicks() : m_root(readText(SCENE)), m_selection(static_cast<SoSelection*>(SoNode::getByName("clicked"))) {
    auto note = [](char const* what) { return const_cast<char*>(what); };
    SoSelectionPathCB* const told = [](void* what, SoPath* path) {
      s_log += static_cast<char const*>(what);
      for (int i = 0; i < path->getLength(); ++i) {
        SbName const name = path->getNode(i)->getName();
        if (name == "left" || name == "right") s_log += name.str();
      }
    };
    SoSelectionClassCB* const happened = [](void* what, SoSelection*) {
      s_log += static_cast<char const*>(what);
    };
    m_selection->addSelectionCallback(told, note("+"));
    m_selection->addDeselectionCallback(told, note("-"));
    m_selection->addChangeCallback(happened, note("!"));
    m_selection->addStartCallback(happened, note("<"));
    m_selection->addFinishCallback(happened, note(">"));
    s_log.clear();
  }
  bool button(SoButtonEvent::State state, short x, short y,
              SoMouseButtonEvent::Button which = SoMouseButtonEvent::LEFT) {
    SoMouseButtonEvent event;
    event.button = which;
    event.state = state;
    event.position = SbVec2s(x, y);
    event.shiftDown = m_shift;
    m_action.setEvent(&event);
    m_action.apply(m_root);
    m_action.setEvent(nullptr);
    return m_action.isHandled();
  }
  /// True when the release was handled.
  bool click(short x, short y = 50) {
    EXPECT_FALSE(button(SoButtonEvent::DOWN, x, y));
    return button(SoButtonEvent::UP, x, y);
  }
  static std::string take() { return std::exchange(s_log, {}); }

  SoRef<SoNode> m_root;
  SoSelection* m_selection;
  SoHandleEventAction m_action{SbViewportRegion(100, 100)};
  bool m_shift = false;
  static inline std::string s_log;
};

TEST_F(Clicks, SelectByPolicy) {
  struct Step {
    int policy;
    short x, y;
    bool shift, handled;
    char const* told;
  };
  Step const steps[] = {
      {SoSelection::SHIFT, LEFT, 50, false, true, "<+left!>"},
      {SoSelection::SHIFT, LEFT, 50, false, true, ""},
      {SoSelection::SHIFT, RIGHT, 50, true, true, "<+right!>"},
      {SoSelection::SHIFT, NOTHING, 50, true, false, ""},
      {SoSelection::SHIFT, NOTHING, 50, false, false, "<-right-left!>"},
      {SoSelection::SINGLE, RIGHT, 50, true, true, "<+right!>"},
      {SoSelection::SINGLE, LEFT, 50, false, true, "<-right+left!>"},
      {SoSelection::SINGLE, NOTHING, 92, false, false, "<-left!>"}, // the bar beside the selection
      {SoSelection::TOGGLE, LEFT, 50, false, true, "<+left!>"},
      {SoSelection::TOGGLE, RIGHT, 50, false, true, "<+right!>"},
      {SoSelection::TOGGLE, LEFT, 50, false, true, "<-left!>"},
      {SoSelection::TOGGLE, NOTHING, 50, false, false, ""},
  };
  for (Step const& step : steps) {
    m_selection->policy = step.policy;
    m_shift = step.shift;
    std::string const where = "step " + std::to_string(&step - steps);
    EXPECT_EQ(click(step.x, step.y), step.handled) << where;
    EXPECT_EQ(take(), step.told) << where;
  }
  SoRef<SoPath> const path = m_selection->getPath(0);
  EXPECT_EQ(path->getHead(), m_selection);
  EXPECT_EQ(path->getTail()->getTypeId().getName(), SbName("Cube"));
}

TEST_F(Clicks, AreShortAndWithTheLeftButton) {
  auto const drag = [this](short x0, short x1, SoMouseButtonEvent::Button which = SoMouseButtonEvent::LEFT) {
    button(SoButtonEvent::DOWN, x0, 50, which);
    button(SoButtonEvent::UP, x1, 50, which);
    return take();
  };
  EXPECT_EQ(drag(LEFT, LEFT + 3), "<+left!>") << "a hand trembles";
  m_selection->deselectAll();
  take();
  EXPECT_EQ(drag(LEFT, LEFT + 8), "") << "a drag on one shape";
  EXPECT_EQ(drag(LEFT, RIGHT), "") << "from one shape to another";
  EXPECT_EQ(drag(33, 36), "") << "off the shape";
  EXPECT_EQ(drag(LEFT, LEFT, SoMouseButtonEvent::RIGHT), "");
  // Another button that is pressed meanwhile makes it something else.
  button(SoButtonEvent::DOWN, LEFT, 50);
  button(SoButtonEvent::DOWN, LEFT, 50, SoMouseButtonEvent::RIGHT);
  button(SoButtonEvent::UP, LEFT, 50);
  EXPECT_EQ(take(), "");
  m_selection->setTakingClicks(false);
  EXPECT_FALSE(click(LEFT));
  EXPECT_EQ(take(), "");
}

TEST_F(Clicks, GoToTheNodesBelowFirst) {
  auto* const below = static_cast<SoEventCallback*>(m_selection->getChild(0));
  static SoButtonEvent::State handled;
  below->addEventCallback(SoMouseButtonEvent::getClassTypeId(), [](void*, SoEventCallback* node) {
    if (static_cast<SoMouseButtonEvent const*>(node->getEvent())->state == handled) node->setHandled();
  });
  for (auto const state : {SoButtonEvent::DOWN, SoButtonEvent::UP}) {
    handled = state;
    button(SoButtonEvent::DOWN, LEFT, 50);
    button(SoButtonEvent::UP, LEFT, 50);
    EXPECT_EQ(take(), "");
  }
  handled = SoButtonEvent::UNKNOWN;
  // The press of a click that was handled is not taken for that of the next release.
  button(SoButtonEvent::UP, LEFT, 50);
  EXPECT_EQ(take(), "");
  EXPECT_TRUE(click(LEFT));
  EXPECT_EQ(take(), "<+left!>");
}

TEST_F(Clicks, InnerSelectionsTakeWhatIsTheirs) {
  auto* const inner = new SoSelection;
  m_selection->addChild(inner);
  inner->addChild(
      readText("Separator { Translation { translation 0 -1 0 } DEF low Cube { width 0.5 height 0.5 } }"));
  EXPECT_TRUE(click(50, 25));
  EXPECT_EQ(inner->getNumSelected(), 1);
  EXPECT_EQ(take(), "");
  // For the inner one that is a click on nothing.
  EXPECT_TRUE(click(LEFT));
  EXPECT_EQ(inner->getNumSelected(), 0);
  EXPECT_EQ(take(), "<+left!>");
}

TEST_F(Clicks, AFilterSaysWhatIsSelected) {
  // The group instead of the shape; nothing on the right.
  m_selection->setPickFilterCallback([](void*, SoPickedPoint const* point) -> SoPath* {
    SoPath* const whole = point->getPath();
    return whole->getNode(2)->getName() == "right" ? nullptr : whole->copy(0, whole->getLength() - 1);
  });
  m_selection->policy = SoSelection::SINGLE;
  EXPECT_TRUE(click(LEFT));
  ASSERT_EQ(m_selection->getNumSelected(), 1);
  EXPECT_EQ(m_selection->getPath(0)->getTail()->getName(), SbName("left"));
  EXPECT_TRUE(click(RIGHT));
  EXPECT_EQ(m_selection->getNumSelected(), 0);
  click(LEFT);
  // A path that runs elsewhere changes nothing, and says so.
  DebugErrors errors;
  m_selection->setPickFilterCallback(
      [](void*, SoPickedPoint const* point) { return new SoPath(point->getPath()->getTail()); });
  EXPECT_TRUE(click(RIGHT));
  EXPECT_EQ(m_selection->getNumSelected(), 1);
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_NE(errors.texts[0].find("clicked"), std::string::npos);
}

TEST_F(Clicks, FunctionsMayTakeTheSelectionApart) {
  m_selection->policy = SoSelection::SINGLE;
  click(LEFT);
  m_selection->addDeselectionCallback(
      [](void* data, SoPath*) {
        static_cast<SoGroup*>(data)->removeChild(1); // the selection node itself
      },
      m_root.get());
  EXPECT_TRUE(click(RIGHT));
  EXPECT_EQ(SoNode::getByName("clicked"), nullptr);
  EXPECT_FALSE(click(RIGHT));
}

} // namespace
