#include "vantle/session/VntServicesImpl.h"

#include "kestrava/nodes/SoSelection.h"
#include "kestrava/render/SoSceneManager.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/VntFieldHandle.h"

VntServicesImpl::VntServicesImpl() : m_commandManager(std::make_unique<SoCommandManager>()) {
  // Their changes are nobody's concern here: nothing is put into the delay queue for them.
  m_nodeSensor.setPriority(0);
  m_fieldSensor.setPriority(0);
  m_nodeSensor.setDeleteCallback(selectedNodeDiesCB, this);
  m_fieldSensor.setDeleteCallback(selectedFieldDiesCB, this);
}

VntServicesImpl::~VntServicesImpl() {
  redrawOnSelectionChange(nullptr);
  // The history does not destroy its commands; in the host's scene nothing of them is to stay.
  m_commandManager.reset();
  VntFieldHandle::releaseAll();
}

void VntServicesImpl::createInstance() {
  if (!m_instance) m_instance = new VntServicesImpl;
}

VntServicesImpl* VntServicesImpl::getImplInstance() {
  createInstance();
  return static_cast<VntServicesImpl*>(m_instance);
}

void VntServicesImpl::releaseInstance() {
  // Whoever is still there during the teardown must not find a half destroyed object.
  delete std::exchange(m_instance, nullptr);
}

void VntServicesImpl::execute(VntCommand* command) { m_commandManager->addCommand(command); }
void VntServicesImpl::undo() { m_commandManager->undo(); }
void VntServicesImpl::redo() { m_commandManager->redo(); }

// The stored node is what was set last through this object; the frame knows what is really inspected.
SoNode* VntServicesImpl::getSceneGraph() const {
  return VntShellImpl::isInstance() ? VntShellImpl::getImplInstance()->getMainFrame()->getVantleSceneGraph()
                                    : nullptr;
}

void VntServicesImpl::setSceneGraph(SoNode* root) {
  SoVantleImpl::Call const call;
  m_sceneGraph = root;
  SoVantleViewer::getInstance()->setScene(root, true);
  Q_EMIT sceneGraphChanged(root);
}

void VntServicesImpl::setSelectedField(SoField* field) {
  SoVantleImpl::Call const call;
  // Of a field that dies, those are told first that were attached last: who follows the selection is to know
  // before the selection goes, also when the same field was selected again.
  if (m_fieldSensor.getAttachedField() != field) m_fieldSensor.attach(field);
  Q_EMIT selectedFieldChanged(field);
}

void VntServicesImpl::selectedFieldDiesCB(void* data, SoSensor*) {
  SoVantleImpl::Call const call;
  Q_EMIT static_cast<VntServicesImpl*>(data)->selectedFieldChanged(nullptr);
}

void VntServicesImpl::setSelectedNode(SoFieldContainer* node) {
  SoVantleImpl::Call const call;
  m_nodeSensor.attach(node);
  Q_EMIT selectedNodeChanged(node);
}

void VntServicesImpl::selectedNodeDiesCB(void* data, SoSensor*) {
  SoVantleImpl::Call const call;
  Q_EMIT static_cast<VntServicesImpl*>(data)->selectedNodeChanged(nullptr);
}

void VntServicesImpl::redrawOnSelectionChange(SoSelection* selection) {
  SoRef<SoSelection> const next(selection);
  if (m_selection) m_selection->removeChangeCallback(selectionChangeCB, this);
  m_selection = next;
  if (m_selection) m_selection->addChangeCallback(selectionChangeCB, this);
}

void VntServicesImpl::selectionChangeCB(void* data, SoSelection*) {
  SoSceneManager* const manager = static_cast<VntServicesImpl*>(data)->getSceneManager();
  if (manager) manager->scheduleRedraw();
}
