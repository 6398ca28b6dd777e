#include "extender_base/VntFieldEditorExtension.h"

#include <QAction>
#include <QApplication>
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
  // The window's, so that it works from everywhere in it.
  auto* const keys = new QAction(tr("Edit Field"), m_dock);
  keys->setShortcut(Qt::Key_F6);
  connect(keys, &QAction::triggered, this, &VntFieldEditorExtension::switchKeys);
  for (QWidget* window : {m_dock->parentWidget(), static_cast<QWidget*>(m_dock)}) window->addAction(keys);
  connect(VntServices::getInstance(), &VntServices::selectedFieldChanged, this,
          &VntFieldEditorExtension::selectField);
  connect(VntServices::getInstance(), &VntServices::fieldActivated, this, [this] { giveKeys(); });
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

bool VntFieldEditorExtension::addControlled(VntExtension* controlled) {
  auto* const editor = dynamic_cast<VntFieldEditor*>(controlled);
  SoType const type = SoType::fromName(SbName(controlled->getName()));
  if (!editor || type.isBad()) return false;
  m_editors[type].prepend(editor);
  return true;
}

void VntFieldEditorExtension::show() {
  if (m_dock) m_dock->show();
}

void VntFieldEditorExtension::hide() {
  if (m_dock) m_dock->hide();
}

void VntFieldEditorExtension::giveKeys() {
  if (!m_panel) return;
  m_dock->show();
  m_dock->raise();
  if (m_dock->isFloating()) m_dock->activateWindow();
  m_panel->focusEditor();
}

void VntFieldEditorExtension::switchKeys() {
  QWidget* const now = QApplication::focusWidget();
  if (!m_panel || !m_panel->isAncestorOf(now)) {
    m_before = now;
    return giveKeys();
  }
  if (!m_before) return;
  m_before->activateWindow();
  m_before->setFocus(Qt::ShortcutFocusReason);
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
