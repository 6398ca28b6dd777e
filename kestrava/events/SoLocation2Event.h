#pragma once

#include "kestrava/events/SoEvent.h"

/// The pointer has moved.
class SoLocation2Event : public SoEvent {
  SO_EVENT(SoLocation2Event, SoEvent)
};
