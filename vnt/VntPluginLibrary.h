#pragma once

#include <QPluginLoader>
#include <QString>
#include <QStringList>

/// What a plug-in says about itself.
struct VntPluginInfo {
  QString name, version, description;
  QString file; // its library, with folder
  QStringList extensions;
};

/// The library of a plug-in: found by its bare name, judged by its metadata, and only then loaded.
class VntPluginLibrary {
 public:
  /// Where plug-ins are looked for, first match wins: the folders of the preference KSV_VANTLE_PLUGIN_PATH,
  /// separated by colons, then the one of this library and its "vantle/plugins". Never the working folder:
  /// entries that are not absolute are left out and named in `problems`.
  static QStringList folders(QStringList& problems);

  /// "name" stands for libname.so. Reads the metadata; no code of the library runs.
  VntPluginLibrary(QString const& name, QStringList const& folders);

  /// No file of that name in any folder.
  bool isAbsent() const { return m_absent; }
  /// Why it can not be used; empty when it can. Details stand behind a line end.
  QString const& getProblem() const { return m_problem; }
  /// Whatever of it is there when there is a problem.
  VntPluginInfo const& getInfo() const { return m_info; }

  /// The plug-in's object, the caller's. Null, with a problem, when the library can not be loaded. What the
  /// plug-in's constructor throws comes through. The library is never unloaded: objects of its classes may be
  /// in anybody's hands.
  QObject* load();

 private:
  void find(QString const& name, QStringList const& folders);
  void judge();

  QPluginLoader m_loader;
  VntPluginInfo m_info;
  QString m_problem;
  bool m_absent = false;
};
