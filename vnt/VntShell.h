#pragma once

#include <QList>
#include <QObject>

#include "kestrava/base/SoType.h"

class QDockWidget;
class QMenu;
class QToolBar;
class QWidget;
class SbString;
class VntExtension;

/// The window side of the inspector as plug-ins see it: docks, menus, tool bars, status bar, preference
/// pages. Unregistering what is not registered does nothing; what a plug-in registered it takes back before
/// the shell goes. The spelling of two names is theirs for good: plug-ins are linked against it.
class VntShell : public QObject {
  Q_OBJECT
 public:
  /// Null while no session exists.
  static VntShell* getInstance() { return m_instance; }

  virtual void registerDock(QDockWidget* dock, Qt::DockWidgetArea area) = 0;
  virtual void unregisterDock(QDockWidget* dock) = 0;
  /// Menus for a node of that type, to be added to its context menu.
  virtual QList<QMenu*> getContextualMenus(SoType const& type) = 0;
  /// `exactTypeOnly`: not for derived types.
  virtual void registerContextualMenu(SoType const& type, bool exactTypeOnly, QMenu* menu) = 0;
  virtual void registerMenu(QMenu* menu) = 0;
  /// Adds a check mark to the view menu that shows and hides the extension.
  virtual void registerViewMenu(VntExtension* extension, int checked) = 0;
  virtual void unregisterContextualMenu(QMenu* menu) = 0;
  virtual void unregisterMenu(QMenu* menu) = 0;
  virtual void unregisterViewMenu(VntExtension* extension) = 0;
  /// The page is its own receiver of the two slots (string form, either may be null): `initSlot` makes it
  /// read the settings, `setSlot` write them. The texts are kept as pointers. The first page of an extension
  /// wins.
  virtual void registerPreferencePanel(VntExtension* extension, QWidget* page, char const* initSlot,
                                       char const* setSlot) = 0;
  virtual void unregisterPreferencePanel(VntExtension* extension) = 0;
  virtual void clearStatusBarMessage() = 0;
  virtual void regiterStatusBarWidget(QWidget* widget, int permanent, int stretch) = 0;
  /// `timeout` in milliseconds, 0: until replaced.
  virtual void showStatusBarMessage(SbString const& text, int timeout) = 0;
  virtual void unregiterStatusBarWidget(QWidget* widget) = 0;
  virtual void registerToolBar(QToolBar* bar, Qt::ToolBarArea area) = 0;
  virtual void unregisterToolBar(QToolBar* bar) = 0;

 protected:
  using QObject::QObject;
  static VntShell* m_instance;
};
