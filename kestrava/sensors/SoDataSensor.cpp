#include "kestrava/sensors/SoDataSensor.h"

#include "kestrava/base/SoPath.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoNodeSensor.h"

SoDataSensor::~SoDataSensor() = default;

SoNode* SoDataSensor::getTriggerNode() const {
  return m_trigger.container && m_trigger.container->isOfType(SoNode::getClassTypeId())
             ? static_cast<SoNode*>(m_trigger.container)
             : nullptr;
}

SoPath* SoDataSensor::getTriggerPath() const { return m_path.get(); }

void SoDataSensor::fire(SoNotification const& notification, SoRef<SoPath> path) {
  m_trigger = notification;
  m_path = std::move(path);
  if (getPriority() == 0) {
    // The function may destroy this sensor: nothing is touched afterwards.
    trigger();
    return;
  }
  m_trigger = SoNotification{SoNotification::UNSPECIFIED, nullptr, notification.field};
  m_path.reset();
  schedule();
}

void SoDataSensor::callDeleteFunction() {
  m_trigger = SoNotification();
  m_path.reset();
  if (m_deleteFunction) m_deleteFunction(m_deleteData, this);
}

namespace {
thread_local SoNodeSensor::Dispatch* innermost = nullptr;
}

SoNodeSensor::Dispatch::Dispatch() : m_outer(innermost) { innermost = this; }
SoNodeSensor::Dispatch::~Dispatch() { innermost = m_outer; }

void SoNodeSensor::Dispatch::add(SoNodeSensor* sensor, SoRef<SoPath> path) {
  m_entries.push_back({sensor, std::move(path)});
}

void SoNodeSensor::Dispatch::run(SoNotification const& notification) {
  for (size_t i = 0; i < m_entries.size(); ++i) {
    if (SoNodeSensor* sensor = m_entries[i].sensor) sensor->fire(notification, std::move(m_entries[i].path));
    // Still listed: still there. The path must not keep nodes alive until the next change.
    if (SoNodeSensor* sensor = m_entries[i].sensor) sensor->dropPath();
  }
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
  fire(SoNotification{SoNotification::UNSPECIFIED, field->getContainer(), field}, nullptr);
}

void SoFieldSensor::attachedObjectDies() {
  unschedule();
  m_field = nullptr;
  callDeleteFunction();
}
