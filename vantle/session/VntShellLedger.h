#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "kestrava/base/SbString.h"

class QObject;
class VntExtension;

/// What is registered with the shell, and by whom.
class VntShellLedger {
 public:
  enum Kind { DOCK, TOOL_BAR, MENU, CONTEXT_MENU, VIEW_ENTRY, PREFERENCE_PAGE, STATUS_WIDGET };
  struct Entry {
    Kind kind;
    QObject* object;         // null once it is destroyed
    VntExtension* extension; // null when not known, and once it is destroyed
    SbString plugin;         // empty when not known
    QString title;
    bool counts = true; // as forgotten, should it still be here when the plug-in goes
  };

  /// `extension` null: the one that the framework is calling. False when the object is registered as such
  /// already.
  bool enter(Kind kind, QObject* object, QString const& title, VntExtension* extension = nullptr);
  /// False when the object was not registered as such.
  bool leave(Kind kind, QObject const* object);
  bool contains(Kind kind, QObject const* object) const;
  /// Its entries stay, for the report.
  void objectDies(QObject const* object);
  /// Likewise; what is still there of the extension.
  std::vector<Entry> takeOf(VntExtension* extension, bool counts);
  /// Takes the entries of a plug-in, or with an empty name all of them.
  std::vector<Entry> takeOf(SbString const& plugin);

  /// The first dock of an extension, which its entry of the view menu stands for; null when there is none.
  QObject* dockOf(VntExtension const* extension) const;
  VntExtension* extensionOf(QObject const* object) const;

  /// For the user: `the dock "Statistics"`.
  static QString describe(Entry const& entry);

 private:
  std::vector<Entry> m_entries;
};
