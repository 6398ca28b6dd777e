#pragma once

#include "kestrava/base/SoPath.h"
#include "kestrava/base/SoNotification.h"
#include "kestrava/sensors/SoDelayQueueSensor.h"

/// A sensor attached to something that can change. Attach, detach and destroy in any order: a sensor whose
/// object dies detaches itself.
///
/// The trigger answers describe the change that fired the sensor. They stand while the callback runs; for a
/// sensor with a priority above 0 several changes may lie behind one call and only the field is answered.
class SoDataSensor : public SoDelayQueueSensor {
 public:
  SoNotification::Type getTriggerType() const { return m_trigger.type; }
  /// Where the change was made; null when that is no node or the priority is not 0.
  SoNode* getTriggerNode() const;
  SoField* getTriggerField() const { return m_trigger.field; }
  SoNode* getTriggerChild() const { return m_trigger.child; }
  int getTriggerChildIndex() const { return m_trigger.index; }
  /// From the object the sensor is attached to down to the trigger node; null unless asked for.
  SoPath* getTriggerPath() const;
  /// Asks for the trigger path; takes effect only with priority 0.
  void setTriggerPathFlag(bool on) { m_wantsPath = on; }
  bool getTriggerPathFlag() const { return m_wantsPath; }
  /// Called after the sensor has detached itself because its object dies.
  void setDeleteCallback(SoSensorCB* function, void* data) {
    m_deleteFunction = function;
    m_deleteData = data;
  }

 protected:
  SoDataSensor(SoSensorCB* function, void* data) : SoDelayQueueSensor(function, data) {}
  ~SoDataSensor() override;
  void fire(SoNotification const& notification);
  void callDeleteFunction();

 private:
  SoNotification m_trigger;
  bool m_wantsPath = false;
  SoSensorCB* m_deleteFunction = nullptr;
  void* m_deleteData = nullptr;
};
