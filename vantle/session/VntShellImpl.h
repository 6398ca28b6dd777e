#pragma once

#include <QMap>
#include <map>
#include <memory>

#include "vantle/session/VntShellLedger.h"
#include "vnt/VntShell.h"

class QAction;
class SoVantleMainFrame;

/// The inspector's side of VntShell; holds the main frame. What it holds for plug-ins goes when the object is
/// destroyed, when its extension is, and at last when the plug-in is.
class VntShellImpl : public VntShell {
  Q_OBJECT
 public:
  /// One page for the preferences dialog; the texts are the extension's own pointers.
  struct preferencePanel {
    QWidget* page = nullptr;
    char const* initSlot = nullptr;
    char const* setSlot = nullptr;
  };

  /// `nativeWindow`: the window that the main frame is created over, 0 for an ordinary one. A second call is
  /// a program fault and is posted.
  static void createInstance(unsigned long long nativeWindow);
  /// Created on first use; the handle of later calls is ignored.
  static VntShellImpl* getImplInstance(unsigned long long nativeWindow = 0);
  static bool isInstance() { return m_instance; }
  static void releaseInstance();

  void registerDock(QDockWidget* dock, Qt::DockWidgetArea area) override;
  void unregisterDock(QDockWidget* dock) override;
  QList<QMenu*> getContextualMenus(SoType const& type) override;
  void registerContextualMenu(SoType const& type, bool exactTypeOnly, QMenu* menu) override;
  void registerMenu(QMenu* menu) override;
  void registerViewMenu(VntExtension* extension, int checked) override;
  void unregisterContextualMenu(QMenu* menu) override;
  void unregisterMenu(QMenu* menu) override;
  void unregisterViewMenu(VntExtension* extension) override;
  void registerPreferencePanel(VntExtension* extension, QWidget* page, char const* initSlot,
                               char const* setSlot) override;
  void unregisterPreferencePanel(VntExtension* extension) override;
  void clearStatusBarMessage() override;
  void regiterStatusBarWidget(QWidget* widget, int permanent, int stretch) override;
  void showStatusBarMessage(SbString const& text, int timeout) override;
  void unregiterStatusBarWidget(QWidget* widget) override;
  void registerToolBar(QToolBar* bar, Qt::ToolBarArea area) override;
  void unregisterToolBar(QToolBar* bar) override;

  QMap<VntExtension*, preferencePanel> getPreferencePanel() const { return m_preferencePanels; }
  SoVantleMainFrame* getMainFrame() const { return m_mainFrame.get(); }

 public Q_SLOTS:
  void s_viewChanged(bool on);

 private:
  explicit VntShellImpl(unsigned long long nativeWindow);
  ~VntShellImpl() override;

  /// Also makes sure that the shell forgets the object when it is destroyed.
  bool enter(VntShellLedger::Kind kind, QObject* object, QString const& title,
             VntExtension* extension = nullptr);
  void forget(QObject* object);
  void takeOut(VntShellLedger::Entry const& entry);
  void pluginIsGone(SbString const& plugin);
  void extensionIsGone(VntExtension* extension, bool destroyed);
  /// Gives the entry of the view menu the state of the dock that it stands for.
  void followDock(QDockWidget* dock);
  void removeViewAction(QAction* action);
  void nameForLayout(QWidget* widget) const;
  void restoreLayout() const;

  // Every registration has a copy of its type, so that one type can have several menus.
  using MenuMap = std::multimap<std::unique_ptr<SoType>, QMenu*>;

  VntShellLedger m_ledger;
  QMap<QAction*, VntExtension*> m_viewActions;
  bool m_following = false; // a dock changes its entry, not the user
  MenuMap m_derivedMenus;
  MenuMap m_exactMenus;
  QMap<VntExtension*, preferencePanel> m_preferencePanels;
  std::unique_ptr<SoVantleMainFrame> m_mainFrame;
};
