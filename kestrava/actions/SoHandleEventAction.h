#pragma once

#include <memory>

#include "kestrava/actions/SoEventListeners.h"
#include "kestrava/actions/SoPickedPoint.h"
#include "kestrava/actions/SoStateAction.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/sensors/SoNodeSensor.h"

class SoEvent;
class SoRayPickAction;

/// Offers an event to the nodes of a graph, in order, until one of them handles it. A node type that listens to
/// events registers a method for this action. What has no such node below it and does not matter to one is not visited.
///
/// A node that grabs gets every further event alone, whatever the pointer is over: only its method is called, outside
/// of any traversal (no path, default state; a grabber keeps the path and the matrices that it needs), until it
/// releases the grab. The action outlives its traversals: who offers events keeps one.
///
/// Methods and the functions of the program that they call may change the graph. They do not apply the same action
/// again.
class SoHandleEventAction : public SoStateAction {
  SO_ACTION(SoHandleEventAction, SoStateAction)
 public:
  explicit SoHandleEventAction(SbViewportRegion const& region = SbViewportRegion());
  ~SoHandleEventAction() override;

  /// The event that the next apply() offers; the caller's, alive until apply() returns.
  void setEvent(SoEvent const* event) { m_event = event; }
  SoEvent const* getEvent() const { return m_event; }
  /// A camera outside the graph, referenced, which stands for those inside; null: the one met last in the graph.
  void setCamera(SoCamera* camera) { m_camera = SoRef<SoCamera>(camera); }
  /// In pixels; 5 unless set.
  void setPickRadius(float pixels) { m_pickRadius = pixels; }
  float getPickRadius() const { return m_pickRadius; }

  // For methods of nodes.
  /// Nobody else gets the event.
  void setHandled();
  bool isHandled() const { return m_handled; }
  /// The node is not referenced: it releases the grab, at the latest when it is destroyed. A former grabber loses it.
  void setGrabber(SoNode* node);
  void releaseGrabber(SoNode* node);
  SoNode* getGrabber() const { return m_grabber; }
  /// What lies nearest under the pointer in the graph that the action is applied to, null when nothing; picked once an
  /// event, and only when asked for. In the coordinates of the root.
  SoPickedPoint const* getPickedPoint();
  /// Through which the user looks, in the coordinates of the root; that of SbViewVolume() before any camera. For a
  /// grabber the camera's as it is now.
  SbViewVolume const& getViewVolume() const { return m_volume; }
  /// The root of the latest apply(); null before.
  SoNode* getPickRoot() const { return m_root; }

 protected:
  void begin() override;
  void end() override;
  void visit(SoNode* node) override;

 private:
  static void grabberDies(void* data, SoSensor* sensor);
  void offerToGrabber();

  SoEvent const* m_event = nullptr;
  SoRef<SoCamera> m_camera;
  SoRef<SoPath> m_cameraPath; // to the camera met last
  SoRef<SoNode> m_root;
  SoEventListeners m_listeners;
  SoNode* m_grabber = nullptr;
  SoNodeSensor m_grabberSensor;
  SbViewVolume m_volume;
  std::unique_ptr<SoRayPickAction> m_pick; // null until the event's point is asked for
  float m_pickRadius = 5;
  bool m_arrived = false; // at the root
  bool m_handled = false;
};
