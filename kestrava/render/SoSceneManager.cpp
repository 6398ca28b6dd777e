#include "kestrava/render/SoSceneManager.h"

#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoGroup.h"

SoAuditorList const& SoSceneManagerImpl::getAuditors() const { return m_manager.getAuditors(); }

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
}

void SoSceneManager::releaseGL() {
  m_ownAction->releaseGL();
  if (m_action != m_ownAction.get()) m_action->releaseGL();
}
