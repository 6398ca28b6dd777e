// Who follows whom, and how values get there.

#include <algorithm>
#include <unordered_set>

#include "kestrava/base/SoError.h"
#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/fields/SoFieldWalk.h"
#include "kestrava/fields/SoSFTrigger.h"
#include "kestrava/sensors/SoFieldSensor.h"

SoField::~SoField() {
  if (!m_links) return;
  if (m_links->listed > 0) SoFieldWalk::fieldDies(this);
  while (!m_links->sensors.empty()) {
    SoFieldSensor* const sensor = m_links->sensors.back();
    m_links->sensors.pop_back();
    sensor->attachedObjectDies();
  }
  // The value is gone with the class that held it: a follower that has not fetched it keeps its last one.
  for (SoField* follower : m_links->followers) {
    follower->m_links->source = nullptr;
    follower->clearFlag(PENDING);
  }
  m_links->followers.clear();
  if (m_links->source) unlink();
}

// A source that serves connections lives as long as somebody follows it.
void SoField::link(SoField* source) {
  SoFieldContainer* const container = source->m_container;
  bool const isHeld = container && container->m_servesConnections;
  if (isHeld) container->ref();
  links().source = source;
  source->links().followers.push_back(this);
  if (isHeld) container->listenersChanged(source);
}

void SoField::unlink() {
  SoField* const source = std::exchange(m_links->source, nullptr);
  auto& followers = source->m_links->followers;
  // From both ends: where many leave they do so in the order in which they came, or in the opposite one.
  if (followers.front() == this) {
    followers.erase(followers.begin());
  } else {
    auto const found = std::find(followers.rbegin(), followers.rend(), this);
    if (found != followers.rend()) followers.erase(std::next(found).base());
  }
  SoFieldContainer* const container = source->m_container;
  if (!container || !container->m_servesConnections) return;
  container->listenersChanged(source);
  container->unref();
}

bool SoField::dependsOn(SoField const* other) const {
  std::vector<SoField const*> open{this};
  std::unordered_set<void const*> seen;
  while (!open.empty()) {
    SoField const* const field = open.back();
    open.pop_back();
    if (field == other) return true;
    if (SoField const* source = field->getConnectedField()) {
      open.push_back(source);
    } else if (field->m_container && field->m_container->m_servesConnections && seen.insert(field).second) {
      std::vector<SoField*> inputs;
      field->m_container->addInputsOf(field, inputs);
      open.insert(open.end(), inputs.begin(), inputs.end());
    }
  }
  return false;
}

namespace {

bool isTakenIn(SoFieldContainer const* container, SoField const* source) {
  if (source->getContainer() == container) return true;
  for (int i = 0; i < container->getNumFields(); ++i) {
    if (container->getField(i)->hasFollowers()) return true;
  }
  return false;
}

}  // namespace

bool SoField::connectFrom(SoField* source) {
  char const* const operation = "SoField::connectFrom";
  bool const servesConnections = m_container && m_container->m_servesConnections;
  if (servesConnections && getFieldType() == EVENT_OUT) {
    SoDebugError::post(operation, "'%s' is an output and follows nothing", getName().c_str());
    return false;
  }
  // Nothing depends on a field that nobody follows and no engine with followers takes in.
  bool const mayClose = hasFollowers() || (servesConnections && source && isTakenIn(m_container, source));
  if (!source || source == this || (mayClose && source->dependsOn(this))) {
    SoDebugError::post(operation,
                       source ? "connecting '%s' would close a loop" : "'%s' can not follow nothing",
                       getName().c_str());
    return false;
  }
  if (!isConvertible(*source)) {
    SoDebugError::post(operation, "a %s can not follow a %s", getTypeId().getName().c_str(),
                       source->getTypeId().getName().c_str());
    return false;
  }
  // The old source goes last: it may be all that keeps the new one alive.
  SoFieldContainer* const old = isConnected() ? getConnectedField()->m_container : nullptr;
  SoRef<SoFieldContainer> const kept(old && old->m_servesConnections ? old : nullptr);
  if (isConnected()) unlink();
  clearFlag(OWN_CONNECTION);
  link(source);
  if (isOfType(SoSFTrigger::getClassTypeId())) {
    // Being connected is no event.
    setDefault(false);
    tellOnly();
  } else {
    markPending();
    if (isNotifyEnabled()) spread();
  }
  return true;
}

void SoField::disconnect() {
  if (!isConnected()) return;
  evaluate();
  if (isConnectionDefault()) {
    clearFlag(OWN_CONNECTION);
    setDefault(false);
  }
  unlink();
  tellOnly();
}

void SoField::markPending() {
  m_flags |= PENDING;
  if (!isConnectionDefault()) clearFlag(DEFAULT);
}

void SoField::addNeeded(std::vector<SoField*>& fields) const {
  if (SoField* const source = getConnectedField()) {
    if (source->needsEvaluation()) fields.push_back(source);
  } else if (m_container && m_container->m_servesConnections) {
    std::vector<SoField*> inputs;
    m_container->addInputsOf(this, inputs);
    for (SoField* input : inputs) {
      if (input->needsEvaluation()) fields.push_back(input);
    }
  }
}

void SoField::fetch() {
  // Sources first, however long the chain.
  std::vector<SoField*> open;
  addNeeded(open);
  while (!open.empty()) {
    SoField* const field = open.back();
    std::size_t const before = open.size();
    if (field->needsEvaluation()) field->addNeeded(open);
    if (open.size() > before) continue;
    open.pop_back();
    field->takeWaiting();
  }
  takeWaiting();
}

void SoField::takeWaiting() {
  if (!needsEvaluation()) return;
  clearFlag(PENDING);
  SoField* const source = getConnectedField();
  if (!source) {
    if (m_container && m_container->m_servesConnections) m_container->computeField(this);
    return;
  }
  if (source->getTypeId() == getTypeId()) {
    takeValueOf(*source);
    return;
  }
  SbString reason;
  if (convertFrom(*source, &reason)) return;
  SoDebugError::post("SoField::evaluate", "'%s' keeps its value, because '%s' has none for a %s: %s",
                     getName().c_str(), source->getName().c_str(), getTypeId().getName().c_str(),
                     reason.c_str());
}

// For what is no change of the value: those who follow it are not concerned.
void SoField::tellOnly() {
  if (!isNotifyEnabled()) return;
  if (m_links) {
    SoFieldWalk walk;
    walk.reach(this);
    walk.tell();
  } else if (m_container) {
    m_container->fieldChanged(this);
    m_container->notify(SoNotification{SoNotification::UNSPECIFIED, m_container, this});
  }
}

void SoField::spread() {
  if (m_links || (m_container && m_container->m_servesConnections)) {
    SoFieldWalk walk;
    walk.reach(this);
    walk.follow();
    walk.tell();
  } else if (m_container) {
    m_container->fieldChanged(this);
    m_container->notify(SoNotification{SoNotification::UNSPECIFIED, m_container, this});
  }
}
