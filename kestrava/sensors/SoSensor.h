#pragma once

class SoSensor;
using SoSensorCB = void(void* data, SoSensor* sensor);

/// Calls a function when something happens. Make, attach, schedule and destroy sensors on one thread; the
/// callback may do anything, deleting its own sensor included.
class SoSensor {
 public:
  virtual ~SoSensor() = default;
  SoSensor(SoSensor const&) = delete;
  SoSensor& operator=(SoSensor const&) = delete;

  void setFunction(SoSensorCB* function) { m_function = function; }
  void setData(void* data) { m_data = data; }
  SoSensorCB* getFunction() const { return m_function; }
  void* getData() const { return m_data; }

  virtual void schedule() = 0;
  virtual void unschedule() = 0;
  virtual bool isScheduled() const = 0;
  /// Calls the function now.
  virtual void trigger() {
    if (m_function) m_function(m_data, this);
  }

 protected:
  SoSensor(SoSensorCB* function, void* data) : m_function(function), m_data(data) {}

 private:
  SoSensorCB* m_function;
  void* m_data;
};
