#include "vantle/session/VntShellImpl.h"

#include <QAction>
#include <QDockWidget>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>

#include "kestrava/base/SoError.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/VntExtension.h"

VntShellImpl::VntShellImpl(unsigned long long nativeWindow)
    : m_mainFrame(std::make_unique<SoVantleMainFrame>(nativeWindow)) {}

VntShellImpl::~VntShellImpl() = default;

void VntShellImpl::createInstance(unsigned long long nativeWindow) {
  if (m_instance) {
    SoError::post("VntShellImpl::createInstance, instance already exists.");
    return;
  }
  m_instance = new VntShellImpl(nativeWindow);
}

VntShellImpl* VntShellImpl::getImplInstance(unsigned long long nativeWindow) {
  if (!m_instance) createInstance(nativeWindow);
  return static_cast<VntShellImpl*>(m_instance);
}

void VntShellImpl::releaseInstance() {
  // The frame's destructor still asks for the shell's frame, so the pointer goes last.
  delete m_instance;
  m_instance = nullptr;
}

void VntShellImpl::registerDock(QDockWidget* dock, Qt::DockWidgetArea area) {
  dock->setParent(m_mainFrame.get());
  m_mainFrame->addDockWidget(area, dock);
}

void VntShellImpl::unregisterDock(QDockWidget* dock) { m_mainFrame->removeDockWidget(dock); }

QList<QMenu*> VntShellImpl::getContextualMenus(SoType const& type) {
  QList<QMenu*> menus;
  for (auto const& [registered, menu] : m_derivedMenus) {
    if (type.isDerivedFrom(*registered)) menus << menu;
  }
  for (auto const& [registered, menu] : m_exactMenus) {
    if (type == *registered) menus << menu;
  }
  return menus;
}

void VntShellImpl::registerContextualMenu(SoType const& type, bool exactTypeOnly, QMenu* menu) {
  (exactTypeOnly ? m_exactMenus : m_derivedMenus).emplace(std::make_unique<SoType>(type), menu);
}

void VntShellImpl::unregisterContextualMenu(QMenu* menu) {
  auto const isThis = [menu](auto const& entry) { return entry.second == menu; };
  std::erase_if(m_derivedMenus, isThis);
  std::erase_if(m_exactMenus, isThis);
}

void VntShellImpl::registerMenu(QMenu* menu) { m_mainFrame->addMenu(menu); }
void VntShellImpl::unregisterMenu(QMenu* menu) { m_mainFrame->removeMenu(menu); }

void VntShellImpl::registerViewMenu(VntExtension* extension, int checked) {
  std::string const text = extension->getInfo().toLatin1();
  auto* action = new QAction(QString::fromLatin1(text.data(), text.size()), m_mainFrame.get());
  action->setCheckable(true);
  action->setChecked(checked != 0);
  connect(action, &QAction::toggled, this, &VntShellImpl::s_viewChanged);
  m_mainFrame->getViewMenu()->addAction(action);
  m_viewActions[action] = extension;
}

void VntShellImpl::unregisterViewMenu(VntExtension* extension) {
  QAction* const action = m_viewActions.key(extension, nullptr);
  if (!action) return;
  m_viewActions.remove(action);
  disconnect(action, &QAction::toggled, this, &VntShellImpl::s_viewChanged);
  m_mainFrame->getViewMenu()->removeAction(action);
  delete action;
}

void VntShellImpl::s_viewChanged(bool on) {
  VntExtension* const extension = m_viewActions[qobject_cast<QAction*>(sender())];
  if (!extension) return;
  if (on)
    extension->show();
  else
    extension->hide();
}

void VntShellImpl::registerPreferencePanel(VntExtension* extension, QWidget* page, char const* initSlot,
                                           char const* setSlot) {
  if (!m_preferencePanels.contains(extension))
    m_preferencePanels.insert(extension, {page, initSlot, setSlot});
}

void VntShellImpl::unregisterPreferencePanel(VntExtension* extension) {
  m_preferencePanels.remove(extension);
}

void VntShellImpl::clearStatusBarMessage() { m_mainFrame->statusBar()->clearMessage(); }

void VntShellImpl::regiterStatusBarWidget(QWidget* widget, int permanent, int stretch) {
  QStatusBar* const bar = m_mainFrame->statusBar();
  widget->setParent(bar);
  if (permanent)
    bar->addPermanentWidget(widget, stretch);
  else
    bar->addWidget(widget, stretch);
  widget->show();
}

void VntShellImpl::showStatusBarMessage(SbString const& text, int timeout) {
  m_mainFrame->statusBar()->showMessage(QString::fromLatin1(text.c_str(), text.getLength()), timeout);
}

void VntShellImpl::unregiterStatusBarWidget(QWidget* widget) {
  m_mainFrame->statusBar()->removeWidget(widget);
}

void VntShellImpl::registerToolBar(QToolBar* bar, Qt::ToolBarArea area) {
  bar->setParent(m_mainFrame.get());
  m_mainFrame->addToolBar(area, bar);
  bar->show();
}

void VntShellImpl::unregisterToolBar(QToolBar* bar) { m_mainFrame->removeToolBar(bar); }
