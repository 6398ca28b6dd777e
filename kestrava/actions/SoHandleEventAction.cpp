#include "kestrava/actions/SoHandleEventAction.h"

#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/events/SoEvent.h"

namespace {

/// What the camera at the tail of a path shows.
class CameraAction : public SoStateAction {
 public:
  using SoStateAction::SoStateAction;
  SbViewVolume const* getVolume() const { return m_found ? &m_volume : nullptr; }

 protected:
  void visit(SoNode* node) override {
    SoStateAction::visit(node);
    if (node != getAppliedPath()->getTail()) return;
    m_volume = getState().get<SoCameraElement>().volume;
    m_found = true;
    terminate();
  }

 private:
  SbViewVolume m_volume;
  bool m_found = false;
};

} // namespace

SoHandleEventAction::SoHandleEventAction(SbViewportRegion const& region)
    : SoStateAction(region), m_grabberSensor(nullptr) {
  // Nothing happens on a change: only the end of the grabber counts.
  m_grabberSensor.setPriority(0);
  m_grabberSensor.setDeleteCallback(grabberDies, this);
}

SoHandleEventAction::~SoHandleEventAction() = default;

void SoHandleEventAction::grabberDies(void* data, SoSensor*) {
  static_cast<SoHandleEventAction*>(data)->m_grabber = nullptr;
}

void SoHandleEventAction::setGrabber(SoNode* node) {
  m_grabber = node;
  m_grabberSensor.attach(node);
}

void SoHandleEventAction::releaseGrabber(SoNode* node) {
  if (node && node == m_grabber) setGrabber(nullptr);
}

void SoHandleEventAction::setHandled() {
  m_handled = true;
  terminate();
}

SoPickedPoint const* SoHandleEventAction::getPickedPoint() {
  if (!m_event || !m_root) return nullptr;
  if (!m_pick) {
    m_pick = std::make_unique<SoRayPickAction>(getViewportRegion());
    m_pick->setPoint(m_event->position);
    m_pick->setRadius(m_pickRadius);
    m_pick->setCamera(m_camera);
    m_pick->apply(m_root.get());
  }
  return m_pick->getPickedPoint();
}

void SoHandleEventAction::begin() {
  SoStateAction::begin();
  m_handled = m_arrived = false;
  m_pick.reset();
  if (!m_event) {
    terminate();
    return;
  }
  m_listeners.begin(!m_camera);
  if (!m_camera) return;
  m_cameraPath.reset();
  m_volume = m_camera->getViewVolume(getViewportRegion().getViewportAspectRatio());
  auto& element = getState().modify<SoCameraElement>();
  element.set = true;
  element.volume = m_volume;
  element.camera = m_camera;
}

// The points that were picked hold nodes, and the event is gone soon.
void SoHandleEventAction::end() { m_pick.reset(); }

void SoHandleEventAction::visit(SoNode* node) {
  if (!m_arrived) {
    m_arrived = true;
    m_root = SoRef<SoNode>(node);
    if (m_grabber) {
      offerToGrabber();
      return;
    }
    m_cameraPath.reset();
    if (!m_listeners.isIn(node)) {
      terminate();
      return;
    }
  }
  SoEventListeners::Range range;
  if (!getAppliedPath() && m_listeners.getRange(node, range)) {
    if (range.first <= range.last) enterChildren(node, range.scoped, range.first, range.last);
    return;
  }
  bool const isCamera = m_listeners.isCamera(node->getTypeId());
  if (isCamera && m_camera) return;
  SoStateAction::visit(node);
  if (!isCamera) return;
  m_volume = getState().get<SoCameraElement>().volume;
  m_cameraPath = SoRef<SoPath>(getCurPath().copy());
}

void SoHandleEventAction::offerToGrabber() {
  if (m_cameraPath && m_cameraPath->getHead() == m_root) {
    CameraAction find(getViewportRegion());
    find.apply(m_cameraPath.get());
    if (find.getVolume()) m_volume = *find.getVolume();
  }
  SoRef<SoNode> const grabber(m_grabber);
  visitHeld(grabber);
  terminate();
}
