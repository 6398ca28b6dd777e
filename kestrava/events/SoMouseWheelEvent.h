#pragma once

#include "kestrava/events/SoEvent.h"

/// The mouse wheel was turned.
class SoMouseWheelEvent : public SoEvent {
  SO_EVENT(SoMouseWheelEvent, SoEvent)
  /// In eighths of a degree; positive away from the user.
  int delta = 0;
};
