#pragma once

#include "kestrava/sensors/SoDataSensor.h"

/// Hears of every change of one field: its value, its ignored flag, its connection, and, for a field that
/// refers to nodes, their changes.
class SoFieldSensor : public SoDataSensor {
 public:
  explicit SoFieldSensor(SoSensorCB* function = nullptr, void* data = nullptr) : SoDataSensor(function, data) {}
  ~SoFieldSensor() override { detach(); }

  void attach(SoField* field);
  void detach();
  SoField* getAttachedField() const { return m_field; }

 private:
  friend class SoField;
  friend class SoFieldWalk;
  void fieldNotified(SoField* field);
  void attachedObjectDies();

  SoField* m_field = nullptr;
};
