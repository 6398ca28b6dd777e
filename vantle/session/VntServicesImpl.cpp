#include "vantle/session/VntServicesImpl.h"

#include "kestrava/nodes/SoSelection.h"
#include "kestrava/render/SoSceneManager.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

VntServicesImpl::VntServicesImpl() : m_commandManager(std::make_unique<SoCommandManager>()) {}

VntServicesImpl::~VntServicesImpl() { redrawOnSelectionChange(nullptr); }

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
  m_sceneGraph = root;
  SoVantleViewer::getInstance()->setScene(root, true);
  Q_EMIT sceneGraphChanged(root);
}

void VntServicesImpl::setSelectedField(SoField* field) {
  m_selectedField = field;
  Q_EMIT selectedFieldChanged(field);
}

void VntServicesImpl::setSelectedNode(SoFieldContainer* node) {
  m_selectedNode = node;
  Q_EMIT selectedNodeChanged(node);
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
