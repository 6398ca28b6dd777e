#include "extender_base/VntFieldEditorExtension.h"

#include <QDockWidget>

#include "extender_base/VntFieldEditorPanel.h"
#include "kestrava/fields/SoField.h"
#include "vnt/VntFieldEditor.h"
#include "vnt/VntServices.h"
#include "vnt/VntShell.h"

VntFieldEditorExtension::~VntFieldEditorExtension() { VntFieldEditorExtension::deactivate(); }

void VntFieldEditorExtension::activate() {
  if (m_dock) return;
  m_dock = new QDockWidget(tr("Field Editor"));
  m_dock->setObjectName("dockFieldEditor");
  m_panel = new VntFieldEditorPanel(m_dock);
  m_dock->setWidget(m_panel);
  VntShell* const shell = VntShell::getInstance();
  shell->registerDock(m_dock, Qt::RightDockWidgetArea);
  shell->registerViewMenu(this, true);
  connect(VntServices::getInstance(), &VntServices::selectedFieldChanged, this,
          &VntFieldEditorExtension::selectField);
  selectField(VntServices::getInstance()->getSelectedField());
}

void VntFieldEditorExtension::deactivate() {
  if (!m_dock) return;
  if (VntServices* services = VntServices::getInstance()) disconnect(services, nullptr, this, nullptr);
  if (VntShell* shell = VntShell::getInstance()) {
    shell->unregisterViewMenu(this);
    shell->unregisterDock(m_dock);
  }
  delete m_dock;
}

void VntFieldEditorExtension::addControlled(VntExtension* controlled) {
  auto* const editor = dynamic_cast<VntFieldEditor*>(controlled);
  SoType const type = SoType::fromName(SbName(controlled->getName()));
  if (editor && !type.isBad()) m_editors.insert_or_assign(type, editor);
}

void VntFieldEditorExtension::show() {
  if (m_dock) m_dock->show();
}

void VntFieldEditorExtension::hide() {
  if (m_dock) m_dock->hide();
}

void VntFieldEditorExtension::selectField(SoField* field) {
  if (!m_panel) return;
  QList<VntFieldEditor*> makers;
  for (SoType type = field ? field->getTypeId() : SoType(); !type.isBad(); type = type.getParent()) {
    auto const found = m_editors.find(type);
    if (found != m_editors.end()) makers << found->second;
  }
  m_panel->setField(field, makers);
}
