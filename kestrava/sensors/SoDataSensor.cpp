#include "kestrava/sensors/SoDataSensor.h"

#include <utility>

#include "kestrava/base/SoPath.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoNodeSensor.h"

SoDataSensor::~SoDataSensor() = default;

SoNode* SoDataSensor::getTriggerNode() const {
  return m_trigger.container && m_trigger.container->isOfType(SoNode::getClassTypeId())
             ? static_cast<SoNode*>(m_trigger.container)
             : nullptr;
}

void SoDataSensor::fire(SoNotification const& notification) {
  m_trigger = notification;
  if (getPriority() == 0) {
    // The function may destroy this sensor: nothing is touched afterwards.
    trigger();
    return;
  }
  m_trigger = SoNotification{SoNotification::UNSPECIFIED, nullptr, notification.field};
  schedule();
}

void SoDataSensor::callDeleteFunction() {
  m_trigger = SoNotification();
  if (m_deleteFunction) m_deleteFunction(m_deleteData, this);
}

namespace {
thread_local SoNodeSensor::Dispatch* innermost = nullptr;
}

SoNodeSensor::Dispatch::Dispatch(std::vector<Reached>& reached)
    : m_reached(reached), m_base(reached.size()), m_outer(innermost) {
  innermost = this;
}

SoNodeSensor::Dispatch::~Dispatch() {
  innermost = m_outer;
  m_reached.resize(m_base);
}

void SoNodeSensor::Dispatch::add(SoNodeSensor* sensor, int at) {
  if (m_entries.empty()) m_entries.reserve(4);
  bool const wantsPath = sensor->getTriggerPathFlag() && sensor->getPriority() == 0 && sensor->getAttachedNode();
  m_entries.push_back({sensor, wantsPath ? at : -1, nullptr});
}

void SoNodeSensor::Dispatch::run(SoNotification const& notification) {
  for (size_t i = 0; i < m_entries.size(); ++i) {
    if (SoNodeSensor* sensor = m_entries[i].sensor) sensor->fire(notification);
    m_entries[i].at = -1;
    // The path must not keep nodes alive longer than necessary.
    m_entries[i].path.reset();
  }
}

void SoNodeSensor::Dispatch::makePath(Entry& entry) const {
  Reached const* const reached = m_reached.data() + m_base;
  Reached const* step = reached + std::exchange(entry.at, -1);
  entry.path = SoRef<SoPath>(new SoPath(static_cast<SoNode*>(step->container)));
  while (step->from >= 0) {
    step = reached + step->from;
    if (auto* node = dynamic_cast<SoNode*>(step->container)) entry.path->appendNode(node);
  }
}

void SoNodeSensor::Dispatch::makePaths() {
  for (Dispatch* d = innermost; d; d = d->m_outer) {
    for (Entry& entry : d->m_entries) {
      if (entry.sensor && entry.at >= 0) d->makePath(entry);
    }
  }
}

SoPath* SoNodeSensor::Dispatch::pathOf(SoDataSensor const* sensor) {
  for (Entry& entry : m_entries) {
    if (entry.sensor != sensor) continue;
    if (entry.at >= 0) makePath(entry);
    return entry.path.get();
  }
  return nullptr;
}

SoPath* SoDataSensor::getTriggerPath() const {
  for (SoNodeSensor::Dispatch* d = innermost; d; d = d->m_outer) {
    if (SoPath* path = d->pathOf(this)) return path;
  }
  return nullptr;
}

SoNode* SoNodeSensor::getAttachedNode() const {
  return m_container && m_container->isOfType(SoNode::getClassTypeId()) ? static_cast<SoNode*>(m_container)
                                                                         : nullptr;
}

void SoNodeSensor::attach(SoFieldContainer* container) {
  detach();
  m_container = container;
  if (container) container->addAuditor(this, SoAuditorList::SENSOR);
}

void SoNodeSensor::detach() {
  if (!m_container) return;
  unschedule();
  for (Dispatch* d = innermost; d; d = d->m_outer) {
    for (Dispatch::Entry& entry : d->m_entries) {
      if (entry.sensor == this) entry.sensor = nullptr;
    }
  }
  m_container->removeAuditor(this, SoAuditorList::SENSOR);
  m_container = nullptr;
}

void SoNodeSensor::attachedObjectDies() {
  detach();
  callDeleteFunction();
}

void SoFieldSensor::attach(SoField* field) {
  detach();
  m_field = field;
  if (field) field->addSensor(this);
}

void SoFieldSensor::detach() {
  if (!m_field) return;
  unschedule();
  m_field->removeSensor(this);
  m_field = nullptr;
}

void SoFieldSensor::fieldNotified(SoField* field) {
  fire(SoNotification{SoNotification::UNSPECIFIED, field->getContainer(), field});
}

void SoFieldSensor::attachedObjectDies() {
  unschedule();
  m_field = nullptr;
  callDeleteFunction();
}
