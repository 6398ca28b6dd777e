#pragma once

#include <QHash>
#include <QMap>
#include <map>
#include <memory>

#include "vnt/VntShell.h"

class QAction;
class SoVantleMainFrame;

/// The inspector's side of VntShell; holds the main frame.
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

  // Every registration has a copy of its type, so that one type can have several menus.
  using MenuMap = std::multimap<std::unique_ptr<SoType>, QMenu*>;

  QMap<QAction*, VntExtension*> m_viewActions;
  MenuMap m_derivedMenus;
  MenuMap m_exactMenus;
  QMap<VntExtension*, preferencePanel> m_preferencePanels;
  std::unique_ptr<SoVantleMainFrame> m_mainFrame;
};
