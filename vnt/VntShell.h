#pragma once

#include <QList>
#include <QObject>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoType.h"

class QDockWidget;
class QMenu;
class QToolBar;
class QWidget;
class VntExtension;

/// The window side of the inspector as plug-ins see it: docks, menus, tool bars, status bar, preference
/// pages. GUI thread only.
///
/// A dock, a tool bar or a status bar widget becomes a child of the window and stays one when it is
/// unregistered: whoever made it destroys it, or else the window does at its end. Menus stay the plug-in's.
/// Unregistering what is not registered does nothing; what a plug-in registered it takes back in its
/// deactivate(). What it has forgotten is taken out, and reported, when the plug-in goes. The spelling of two
/// names is theirs for good: plug-ins are linked against it.
class VntShell : public QObject {
  Q_OBJECT
 public:
  /// Null while no session exists.
  static VntShell* getInstance() { return m_instance; }

  /// A dock that the stored layout knows by its object name comes to its former place, and stays closed when
  /// it was. One without an object name is given its title as name.
  virtual void registerDock(QDockWidget* dock, Qt::DockWidgetArea area) = 0;
  virtual void unregisterDock(QDockWidget* dock) = 0;
  /// Menus for a node of that type, which the tree's context menu shows for it.
  virtual QList<QMenu*> getContextualMenus(SoType const& type) = 0;
  /// `exactTypeOnly`: not for derived types.
  virtual void registerContextualMenu(SoType const& type, bool exactTypeOnly, QMenu* menu) = 0;
  /// In the menu bar.
  virtual void registerMenu(QMenu* menu) = 0;
  /// Adds an entry with a check mark to the view menu that shows and hides the extension. The mark follows
  /// the dock, when the extension has registered one in a call by the program (its activate(), say). An
  /// extension has one entry: for another one nothing happens.
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
  /// `permanent`: not covered by messages, at the right.
  virtual void regiterStatusBarWidget(QWidget* widget, int permanent, int stretch) = 0;
  /// `timeout` in milliseconds, 0: until replaced. Characters beyond Latin-1 are shown as "?".
  virtual void showStatusBarMessage(SbString const& text, int timeout) = 0;
  virtual void unregiterStatusBarWidget(QWidget* widget) = 0;
  /// As for docks: the stored layout knows it by its object name.
  virtual void registerToolBar(QToolBar* bar, Qt::ToolBarArea area) = 0;
  virtual void unregisterToolBar(QToolBar* bar) = 0;

 Q_SIGNALS:
  // From the framework to the shell.
  /// The plug-in's object is destroyed; empty: no plug-in is left.
  void pluginGone(SbString const& plugin);
  /// The extension is destroyed, or has failed (`destroyed` false): nothing of it may stay registered.
  void extensionGone(VntExtension* extension, bool destroyed);

 protected:
  using QObject::QObject;
  static VntShell* m_instance;
};
