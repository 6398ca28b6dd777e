#pragma once

#include "kestrava/events/SoEvent.h"

/// Base of the events of things that are pressed and released.
class SoButtonEvent : public SoEvent {
  SO_EVENT(SoButtonEvent, SoEvent)
  enum State { UP, DOWN, UNKNOWN };
  State state = UNKNOWN;
};
