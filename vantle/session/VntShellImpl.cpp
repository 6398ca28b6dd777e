#include "vantle/session/VntShellImpl.h"

#include <QAction>
#include <QDockWidget>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>

#include "kestrava/base/SoError.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/QtText.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPluginsManager.h"

namespace {

/// As the framework's texts come to the screen.
QString latin1(SbString const& text) {
  std::string const bytes = text.toLatin1();
  return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString titleOf(QWidget const* widget) {
  QString const title = widget->windowTitle().isEmpty() ? widget->objectName() : widget->windowTitle();
  return title.isEmpty() ? QString::fromLatin1(widget->metaObject()->className()) : title;
}

} // namespace

VntShellImpl::VntShellImpl(unsigned long long nativeWindow)
    : m_mainFrame(std::make_unique<SoVantleMainFrame>(nativeWindow)) {
  connect(this, &VntShell::pluginGone, this, &VntShellImpl::pluginIsGone);
  connect(this, &VntShell::extensionGone, this, &VntShellImpl::extensionIsGone);
}

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

// Docks and tool bars.

void VntShellImpl::registerDock(QDockWidget* dock, Qt::DockWidgetArea area) {
  if (!dock) return;
  nameForLayout(dock);
  bool const isNew = enter(VntShellLedger::DOCK, dock, titleOf(dock));
  dock->setParent(m_mainFrame.get());
  // The stored layout was read before there was this dock.
  if (!isNew || !m_mainFrame->restoreDockWidget(dock)) m_mainFrame->addDockWidget(area, dock);
  if (!isNew) return;
  restoreLayout();
  connect(dock->toggleViewAction(), &QAction::toggled, this, [this, dock] { followDock(dock); });
  if (dock->isHidden()) followDock(dock);
}

void VntShellImpl::unregisterDock(QDockWidget* dock) {
  if (!m_ledger.leave(VntShellLedger::DOCK, dock)) return;
  disconnect(dock->toggleViewAction(), nullptr, this, nullptr);
  m_mainFrame->removeDockWidget(dock);
}

void VntShellImpl::registerToolBar(QToolBar* bar, Qt::ToolBarArea area) {
  if (!bar) return;
  nameForLayout(bar);
  bool const isNew = enter(VntShellLedger::TOOL_BAR, bar, titleOf(bar));
  bar->setParent(m_mainFrame.get());
  m_mainFrame->addToolBar(area, bar);
  bar->show();
  if (isNew) restoreLayout();
}

/// For a single tool bar the window can not look the stored layout up, and a window that is going to be maximised
/// forgets the dock that it has looked up for. Before the window is shown the whole disturbs nobody.
void VntShellImpl::restoreLayout() const {
  if (!m_mainFrame->isVisible() && SoVantleViewer::isInstance()) SoVantleViewer::getInstance()->restoreLayout();
}

void VntShellImpl::unregisterToolBar(QToolBar* bar) {
  if (m_ledger.leave(VntShellLedger::TOOL_BAR, bar)) m_mainFrame->removeToolBar(bar);
}

/// The layout is stored by object names; Qt leaves out what has none.
void VntShellImpl::nameForLayout(QWidget* widget) const {
  if (!widget->objectName().isEmpty()) return;
  QString const title = widget->windowTitle().isEmpty()
                            ? QString::fromLatin1(widget->metaObject()->className())
                            : widget->windowTitle();
  QString name = title;
  for (int number = 2; m_mainFrame->findChild<QWidget*>(name); ++number) {
    name = title + ' ' + QString::number(number);
  }
  widget->setObjectName(name);
}

// Menus.

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
  if (!menu) return;
  enter(VntShellLedger::CONTEXT_MENU, menu, menu->title());
  (exactTypeOnly ? m_exactMenus : m_derivedMenus).emplace(std::make_unique<SoType>(type), menu);
}

void VntShellImpl::unregisterContextualMenu(QMenu* menu) {
  m_ledger.leave(VntShellLedger::CONTEXT_MENU, menu);
  auto const isThis = [menu](auto const& entry) { return entry.second == menu; };
  if (std::erase_if(m_derivedMenus, isThis) + std::erase_if(m_exactMenus, isThis) == 0) return;
  // It may be open in the tree's menu.
  if (QMenu* const shown = m_mainFrame->getTreeviewContextMenu()) shown->removeAction(menu->menuAction());
}

void VntShellImpl::registerMenu(QMenu* menu) {
  if (menu && enter(VntShellLedger::MENU, menu, menu->title())) m_mainFrame->addMenu(menu);
}

void VntShellImpl::unregisterMenu(QMenu* menu) {
  if (m_ledger.leave(VntShellLedger::MENU, menu)) m_mainFrame->removeMenu(menu);
}

void VntShellImpl::registerViewMenu(VntExtension* extension, int checked) {
  if (!extension || m_viewActions.key(extension, nullptr)) return;
  auto* action = new QAction(latin1(extension->getInfo()), m_mainFrame.get());
  action->setCheckable(true);
  action->setChecked(checked != 0);
  connect(action, &QAction::toggled, this, &VntShellImpl::s_viewChanged);
  m_mainFrame->getViewMenu()->addAction(action);
  m_viewActions[action] = extension;
  enter(VntShellLedger::VIEW_ENTRY, action, action->text(), extension);
  // The stored layout may have closed the dock, which the extension need not know.
  auto* const dock = static_cast<QDockWidget*>(m_ledger.dockOf(extension));
  if (dock && dock->isHidden() && !m_mainFrame->isVisible()) followDock(dock);
}

void VntShellImpl::unregisterViewMenu(VntExtension* extension) {
  QAction* const action = m_viewActions.key(extension, nullptr);
  if (!action) return;
  m_ledger.leave(VntShellLedger::VIEW_ENTRY, action);
  removeViewAction(action);
}

void VntShellImpl::removeViewAction(QAction* action) {
  m_viewActions.remove(action);
  disconnect(action, &QAction::toggled, this, &VntShellImpl::s_viewChanged);
  m_mainFrame->getViewMenu()->removeAction(action);
  delete action;
}

void VntShellImpl::s_viewChanged(bool on) {
  if (m_following) return;
  VntExtension* const extension = m_viewActions[qobject_cast<QAction*>(sender())];
  if (!extension) return;
  if (on)
    VntPluginsManager::call(extension, "show()", [extension] { extension->show(); });
  else
    VntPluginsManager::call(extension, "hide()", [extension] { extension->hide(); });
}

void VntShellImpl::followDock(QDockWidget* dock) {
  VntExtension* const extension = m_ledger.extensionOf(dock);
  QAction* const action = m_viewActions.key(extension, nullptr);
  if (!extension || !action || m_ledger.dockOf(extension) != dock) return;
  bool const before = std::exchange(m_following, true);
  action->setChecked(!dock->isHidden());
  m_following = before;
}

// Preference pages.

void VntShellImpl::registerPreferencePanel(VntExtension* extension, QWidget* page, char const* initSlot,
                                           char const* setSlot) {
  if (!extension || !page || m_preferencePanels.contains(extension)) return;
  enter(VntShellLedger::PREFERENCE_PAGE, page, latin1(extension->getInfo()), extension);
  m_preferencePanels.insert(extension, {page, initSlot, setSlot});
}

void VntShellImpl::unregisterPreferencePanel(VntExtension* extension) {
  m_ledger.leave(VntShellLedger::PREFERENCE_PAGE, m_preferencePanels.value(extension).page);
  m_preferencePanels.remove(extension);
}

// Status bar.

void VntShellImpl::clearStatusBarMessage() { m_mainFrame->statusBar()->clearMessage(); }

void VntShellImpl::regiterStatusBarWidget(QWidget* widget, int permanent, int stretch) {
  if (!widget) return;
  enter(VntShellLedger::STATUS_WIDGET, widget, titleOf(widget));
  QStatusBar* const bar = m_mainFrame->statusBar();
  widget->setParent(bar);
  if (permanent)
    bar->addPermanentWidget(widget, stretch);
  else
    bar->addWidget(widget, stretch);
  widget->show();
}

void VntShellImpl::showStatusBarMessage(SbString const& text, int timeout) {
  m_mainFrame->statusBar()->showMessage(latin1(text), timeout);
}

void VntShellImpl::unregiterStatusBarWidget(QWidget* widget) {
  if (m_ledger.leave(VntShellLedger::STATUS_WIDGET, widget)) m_mainFrame->statusBar()->removeWidget(widget);
}

// What plug-ins leave behind.

bool VntShellImpl::enter(VntShellLedger::Kind kind, QObject* object, QString const& title,
                         VntExtension* extension) {
  connect(object, &QObject::destroyed, this, &VntShellImpl::forget, Qt::UniqueConnection);
  return m_ledger.enter(kind, object, title, extension);
}

void VntShellImpl::forget(QObject* object) {
  m_ledger.objectDies(object);
  // By now it is a QObject and nothing more; Qt's own lists have let it go.
  auto const isThis = [object](auto const& entry) { return static_cast<QObject*>(entry.second) == object; };
  std::erase_if(m_derivedMenus, isThis);
  std::erase_if(m_exactMenus, isThis);
  m_preferencePanels.removeIf([object](auto entry) { return static_cast<QObject*>(entry->page) == object; });
  m_viewActions.removeIf([object](auto entry) { return static_cast<QObject*>(entry.key()) == object; });
}

void VntShellImpl::takeOut(VntShellLedger::Entry const& entry) {
  if (!entry.object) return;
  // A widget of the window stays its child and goes with it.
  switch (entry.kind) {
    case VntShellLedger::DOCK: {
      auto* const dock = static_cast<QDockWidget*>(entry.object);
      disconnect(dock->toggleViewAction(), nullptr, this, nullptr);
      return m_mainFrame->removeDockWidget(dock);
    }
    case VntShellLedger::TOOL_BAR:
      return m_mainFrame->removeToolBar(static_cast<QToolBar*>(entry.object));
    case VntShellLedger::MENU:
      return m_mainFrame->removeMenu(static_cast<QMenu*>(entry.object));
    case VntShellLedger::CONTEXT_MENU:
      return unregisterContextualMenu(static_cast<QMenu*>(entry.object));
    case VntShellLedger::VIEW_ENTRY:
      return removeViewAction(static_cast<QAction*>(entry.object));
    case VntShellLedger::PREFERENCE_PAGE:
      m_preferencePanels.removeIf([&](auto panel) { return panel->page == entry.object; });
      return;
    case VntShellLedger::STATUS_WIDGET:
      return m_mainFrame->statusBar()->removeWidget(static_cast<QWidget*>(entry.object));
  }
}

void VntShellImpl::extensionIsGone(VntExtension* extension, bool destroyed) {
  for (VntShellLedger::Entry const& entry : m_ledger.takeOf(extension, destroyed)) takeOut(entry);
}

void VntShellImpl::pluginIsGone(SbString const& plugin) {
  QStringList left;
  for (VntShellLedger::Entry const& entry : m_ledger.takeOf(plugin)) {
    takeOut(entry);
    // Where nobody knows whose an object was, its end is as good as an unregistration.
    if (entry.object || !plugin.empty()) left << VntShellLedger::describe(entry);
  }
  if (left.isEmpty()) return;
  QString const who = plugin.empty() ? tr("a plug-in") : tr("plug-in \"%1\"").arg(toQString(plugin));
  SoDebugError::post("VntShell", "%s",
                     qPrintable(tr("%1 has gone without unregistering %2").arg(who, left.join(", "))));
}
