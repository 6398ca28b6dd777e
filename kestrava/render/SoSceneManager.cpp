#include "kestrava/render/SoSceneManager.h"

#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoGroup.h"

SoAuditorList const& SoSceneManagerImpl::getAuditors() const { return m_manager.getAuditors(); }

void SoSceneManagerImpl::setOwnVantle(int mark) {
  if (m_ownVantle == mark) return;
  m_ownVantle = mark;
  if (m_highlight) m_manager.scheduleRedraw();
}

void SoSceneManagerImpl::setHighlight(SoHighlightRenderAction* action, SoGroup* selectionAbove) {
  if (m_highlight && m_highlight != action) m_abandoned.push_back(m_highlight->takeObjects());
  m_highlight = action;
  m_marked = SoRef<SoGroup>(action ? selectionAbove : nullptr);
  m_manager.scheduleRedraw();
}

void SoSceneManagerImpl::frameDrawn(SoGLRenderAction const& frame) {
  for (auto& objects : m_abandoned) objects.release();
  m_abandoned.clear();
  if (m_ownVantle == 0 || !m_highlight || m_highlight == &frame || !m_marked) return;
  if (m_marked->findChild(m_manager.getSceneGraph()) >= 0) m_highlight->markOver(m_marked, frame);
}

void SoSceneManagerImpl::releaseGL() {
  for (auto& objects : m_abandoned) objects.release();
  m_abandoned.clear();
  if (m_highlight) m_highlight->takeObjects().release();
}

SoSceneManager::SoSceneManager()
    : m_impl(new SoSceneManagerImpl(*this)),
      m_ownAction(new SoGLRenderAction),
      m_action(m_ownAction.get()),
      m_rootSensor(graphChanged, this),
      m_cameraSensor(graphChanged, this),
      m_redrawSensor(redrawDue, this),
      m_background(m_ownAction->getBackgroundColor()) {
  // Inside the change nothing is drawn: it is only noted that something is due.
  m_rootSensor.setPriority(0);
  m_cameraSensor.setPriority(0);
}

SoSceneManager::~SoSceneManager() = default;

void SoSceneManager::setSceneGraph(SoNode* root) {
  SoRef<SoNode> const next(root);  // a grabber may drop it
  if (root != m_root) releaseGrab();
  m_rootSensor.attach(root);
  m_root = SoRef<SoNode>(root);
  scheduleRedraw();
}

void SoSceneManager::setCamera(SoCamera* camera) {
  m_cameraSensor.attach(camera);
  m_camera = SoRef<SoCamera>(camera);
  scheduleRedraw();
}

void SoSceneManager::setRenderCallback(RenderCallback* function, void* data) {
  m_callback = function;
  m_callbackData = data;
  if (!function) m_redrawSensor.unschedule();
}

void SoSceneManager::scheduleRedraw() {
  if (m_callback) m_redrawSensor.schedule();
}

void SoSceneManager::graphChanged(void* data, SoSensor*) { static_cast<SoSceneManager*>(data)->scheduleRedraw(); }

void SoSceneManager::redrawDue(void* data, SoSensor*) {
  auto* const manager = static_cast<SoSceneManager*>(data);
  if (manager->m_callback) manager->m_callback(manager->m_callbackData, manager);
}

void SoSceneManager::setGLRenderAction(SoGLRenderAction* action) {
  m_action = action ? action : m_ownAction.get();
  scheduleRedraw();
}

void SoSceneManager::setBackgroundColorRGBA(SbColorRGBA const& color) {
  m_background = color;
  scheduleRedraw();
}

void SoSceneManager::setUp(SoGLRenderAction& action) const {
  action.setViewportRegion(m_region);
  action.setBackgroundColor(m_background);
  action.setCamera(m_camera);
}

void SoSceneManager::render(bool clears) {
  setUp(*m_action);
  m_action->setClearing(clears);
  SoRef<SoNode> root = m_root;
  if (!root) root = SoRef<SoNode>(new SoGroup);
  m_action->apply(root);
  m_impl->frameDrawn(*m_action);
}

bool SoSceneManager::processEvent(SoEvent const& event) {
  if (m_offersEvent || !m_root) return false;
  SoKeepAlive const self(this);
  m_offersEvent = true;
  m_pointer = event.position;
  m_eventAction.setViewportRegion(m_region);
  m_eventAction.setCamera(m_camera ? m_camera.get() : m_action->getFrontCamera());
  m_eventAction.setEvent(&event);
  m_eventAction.apply(m_root.get());
  m_eventAction.setEvent(nullptr);
  m_offersEvent = false;
  // What a click selects changes no node; highlights are drawn anew all the same.
  if (event.isOfType(SoButtonEvent::getClassTypeId())) scheduleRedraw();
  return m_eventAction.isHandled();
}

void SoSceneManager::releaseGrab() {
  SoKeepAlive const self(this);
  if (getGrabber()) {
    SoMouseButtonEvent release;
    release.button = SoMouseButtonEvent::LEFT;
    release.state = SoButtonEvent::UP;
    release.position = m_pointer;
    release.time = SbTime::now();
    processEvent(release);
  }
  m_eventAction.releaseGrabber(getGrabber());
}

void SoSceneManager::releaseGL() {
  m_impl->releaseGL();
  m_ownAction->releaseGL();
  if (m_action != m_ownAction.get()) m_action->releaseGL();
}
