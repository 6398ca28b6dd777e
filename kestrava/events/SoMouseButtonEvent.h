#pragma once

#include "kestrava/events/SoButtonEvent.h"

/// A mouse button was pressed or released.
class SoMouseButtonEvent : public SoButtonEvent {
  SO_EVENT(SoMouseButtonEvent, SoButtonEvent)
  enum Button { ANY = 0, LEFT = 1, MIDDLE = 2, RIGHT = 3 };
  Button button = ANY;

  static bool isPress(SoEvent const& event, Button button) { return is(event, button, DOWN); }
  static bool isRelease(SoEvent const& event, Button button) { return is(event, button, UP); }

 private:
  static bool is(SoEvent const& event, Button button, State state) {
    if (!event.isOfType(getClassTypeId())) return false;
    auto const& mouse = static_cast<SoMouseButtonEvent const&>(event);
    return mouse.state == state && (button == ANY || mouse.button == button);
  }
};
