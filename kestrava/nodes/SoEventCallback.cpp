#include "kestrava/nodes/SoEventCallback.h"

#include <algorithm>
#include <utility>

#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/events/SoEvent.h"

namespace {

void offerEvent(SoHandleEventAction& action, SoEventCallback& node) { node.handleEvent(action); }
bool const registered = SoAction::addMethods<offerEvent>();

/// True when `part` is a piece of `whole`.
bool runsAlong(SoPath const& whole, SoPath const& part) {
  int const from = whole.findNode(part.getHead());
  if (from < 0 || from + part.getLength() > whole.getLength()) return false;
  for (int i = 1; i < part.getLength(); ++i) {
    if (whole.getNode(from + i) != part.getNode(i) || whole.getIndex(from + i) != part.getIndex(i)) return false;
  }
  return true;
}

}  // namespace

void SoEventCallback::removeEventCallback(SoType eventType, Function* function, void* data) {
  auto const found = std::find(m_entries.begin(), m_entries.end(), Entry{eventType, function, data});
  if (found != m_entries.end()) m_entries.erase(found);
}

bool SoEventCallback::isConcerned(SoHandleEventAction& action) const {
  SoPath const* const along = path.isIgnored() ? nullptr : path.getValue();
  if (!along || along->getLength() == 0 || action.getGrabber() == this) return true;
  SoPickedPoint const* const point = action.getPickedPoint();
  return point && runsAlong(*point->getPath(), *along);
}

void SoEventCallback::handleEvent(SoHandleEventAction& action) {
  SoEvent const& event = *action.getEvent();
  auto const isMeant = [&event](Entry const& entry) { return entry.function && event.isOfType(entry.eventType); };
  if (std::none_of(m_entries.begin(), m_entries.end(), isMeant) || !isConcerned(action)) return;
  SoKeepAlive const self(this);
  SoHandleEventAction* const outer = std::exchange(m_action, &action);
  for (Entry const& entry : std::vector<Entry>(m_entries)) {
    bool const isThere = std::find(m_entries.begin(), m_entries.end(), entry) != m_entries.end();
    if (isThere && isMeant(entry)) entry.function(entry.data, this);
  }
  m_action = outer;
}

SoEvent const* SoEventCallback::getEvent() const { return m_action ? m_action->getEvent() : nullptr; }

bool SoEventCallback::isHandled() const { return m_action && m_action->isHandled(); }

void SoEventCallback::setHandled() {
  if (m_action) m_action->setHandled();
}

void SoEventCallback::grabEvents() {
  if (m_action) {
    m_action->setGrabber(this);
  } else {
    SoDebugError::post("SoEventCallback::grabEvents", "'%s' is not being offered an event", getName().c_str());
  }
}

void SoEventCallback::releaseEvents() {
  if (m_action) {
    m_action->releaseGrabber(this);
  } else {
    SoDebugError::post("SoEventCallback::releaseEvents", "'%s' is not being offered an event", getName().c_str());
  }
}
