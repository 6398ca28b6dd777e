#pragma once

#include <vector>

#include "kestrava/sensors/SoDataSensor.h"

class SoFieldContainer;

/// Hears of every change of one node and of anything below it, once a change, along however many paths the
/// change can be reached. With priority 0 the function runs inside the change, after it is complete.
class SoNodeSensor : public SoDataSensor {
 public:
  explicit SoNodeSensor(SoSensorCB* function = nullptr, void* data = nullptr) : SoDataSensor(function, data) {}
  ~SoNodeSensor() override { detach(); }

  /// Any field container will do. Takes no reference.
  void attach(SoFieldContainer* container);
  void detach();
  SoFieldContainer* getAttachedContainer() const { return m_container; }
  SoNode* getAttachedNode() const;

  /// The sensors reached by one change. One that is detached or destroyed by another's function while the
  /// list is worked off is not called.
  class Dispatch {
   public:
    Dispatch();
    ~Dispatch();
    void add(SoNodeSensor* sensor, SoRef<SoPath> path);
    void run(SoNotification const& notification);

   private:
    friend class SoNodeSensor;
    struct Entry;
    std::vector<Entry> m_entries;
    Dispatch* m_outer;
  };

 private:
  friend class SoFieldContainer;
  void attachedObjectDies();

  SoFieldContainer* m_container = nullptr;
};

struct SoNodeSensor::Dispatch::Entry {
  SoNodeSensor* sensor;
  SoRef<SoPath> path;
};
