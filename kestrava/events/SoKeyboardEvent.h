#pragma once

#include "kestrava/base/SbString.h"
#include "kestrava/events/SoButtonEvent.h"

/// A key was pressed or released.
class SoKeyboardEvent : public SoButtonEvent {
  SO_EVENT(SoKeyboardEvent, SoButtonEvent)
  /// Keys that give no character; letters, digits and signs are their upper-case ASCII code.
  enum Key {
    ANY = 0,
    BACKSPACE = 8,
    TAB = 9,
    RETURN = 13,
    ESCAPE = 27,
    SPACE = 32,
    DELETE = 127,
    HOME = 256,
    LEFT_ARROW,
    UP_ARROW,
    RIGHT_ARROW,
    DOWN_ARROW,
    PAGE_UP,
    PAGE_DOWN,
    END,
    INSERT,
    F1,
    F12 = F1 + 11,
    SHIFT,
    CONTROL,
    ALT,
    OTHER,
  };
  int key = ANY;
  /// What the key types with the modifiers that are down, UTF-8; empty when nothing.
  SbString text;

  static bool isPress(SoEvent const& event, int key) { return is(event, key, DOWN); }
  static bool isRelease(SoEvent const& event, int key) { return is(event, key, UP); }

 private:
  static bool is(SoEvent const& event, int key, State state) {
    if (!event.isOfType(getClassTypeId())) return false;
    auto const& keyboard = static_cast<SoKeyboardEvent const&>(event);
    return keyboard.state == state && (key == ANY || keyboard.key == key);
  }
};
