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
  /// list is worked off is not called. Paths are made when somebody asks for one, or is about to
  /// change the graph.
  class Dispatch {
   public:
    struct Reached {
      SoFieldContainer* container;
      int from;  // index of the container below it, from the first of this change; -1: where the change was made
    };
    /// The list is used as a stack: what is entered from now on belongs to this change.
    explicit Dispatch(std::vector<Reached>& reached);
    ~Dispatch();
    /// The sensor's container is the one that was reached as the `at`th.
    void add(SoNodeSensor* sensor, int at);
    void run(SoNotification const& notification);
    /// Before any change of who is whose child: afterwards the ways may be others, or lead over what is gone.
    static void makePaths();

   private:
    friend class SoDataSensor;
    friend class SoNodeSensor;
    struct Entry;
    SoPath* pathOf(SoDataSensor const* sensor);
    void makePath(Entry& entry) const;
    std::vector<Reached>& m_reached;
    std::size_t m_base;
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
  int at;  // -1: wants no path, or has it
  SoRef<SoPath> path;
};
