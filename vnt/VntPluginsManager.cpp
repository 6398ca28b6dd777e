#include "vnt/VntPluginsManager.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QXmlStreamReader>
#include <unordered_map>

#include "kestrava/base/SoError.h"
#include "vnt/QtText.h"
#include "vnt/VntConfiguration.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"
#include "vnt/VntPluginLibrary.h"
#include "vnt/VntShell.h"

namespace {

Q_LOGGING_CATEGORY(pluginsLog, "vnt.plugins", QtWarningMsg)

VntPluginsManager* instance = nullptr;

struct Callee {
  QString plugin;
  VntExtension* extension = nullptr;
};
Callee callee; // whose code runs

QString tr(char const* text) { return QCoreApplication::translate("VntPluginsManager", text); }

/// What an exception says; only within a catch block.
QString currentException() {
  try {
    throw;
  } catch (std::exception const& exception) {
    return QString::fromUtf8(exception.what());
  } catch (...) {
    return tr("an exception of unknown type");
  }
}

// Details of a problem stand behind a line end: folders and paths, too long for a status bar.

void post(QString const& problem) {
  SoDebugError::post("VntPluginsManager", "%s", toSbString(QString(problem).replace('\n', ' ')).c_str());
}

void showInStatusBar(QStringList const& problems) {
  VntShell* const shell = VntShell::getInstance();
  if (!shell || problems.isEmpty()) return;
  QString const text =
      problems.size() == 1
          ? problems.first()
          : tr("%1 problems with plug-ins: %2").arg(QString::number(problems.size()), problems.join("; "));
  shell->showStatusBarMessage(toSbString(text), 0);
}

struct LoadedPlugin {
  VntPluginInfo info;
  std::unique_ptr<QObject> object;
  VntPlugin* plugin; // the object
};

} // namespace

struct VntPluginsManager::Private {
  std::vector<LoadedPlugin> plugins;
  std::vector<VntExtension*> active;
  std::unordered_map<VntExtension const*, QString> pluginOf;

  // While a configuration is read.
  bool isFile = false;
  QString source;
  QStringList problems;
  int absentModules = 0;
  QStringList unknownPlugins;

  void complain(QString const& problem) {
    post(problem);
    problems << problem.section('\n', 0, 0).replace(source, source.section('/', -1));
  }
  QString at(qint64 line) const { return QStringLiteral("%1:%2: ").arg(source).arg(line); }

  /// Into a plug-in or one of its extensions.
  bool call(Callee const& called, QString const& what, std::function<void()> const& function) {
    Callee const outer = std::exchange(callee, called);
    bool ok = true;
    try {
      function();
    } catch (...) {
      ok = false;
      complain(tr("plug-in \"%1\": %2 failed: %3").arg(called.plugin, what, currentException()));
    }
    callee = outer;
    return ok;
  }

  LoadedPlugin const* findPlugin(QString const& name) const {
    for (LoadedPlugin const& loaded : plugins) {
      if (loaded.info.name == name) return &loaded;
    }
    return nullptr;
  }

  // Reading.

  void loadModules(std::vector<VntConfiguration::Module> const& modules) {
    if (modules.empty()) return;
    QStringList badFolders;
    QStringList const folders = VntPluginLibrary::folders(badFolders);
    for (QString const& problem : badFolders) complain(problem);
    for (VntConfiguration::Module const& module : modules) loadModule(module, folders);
  }

  void loadModule(VntConfiguration::Module const& module, QStringList const& folders) {
    if (module.file.isEmpty()) {
      ++absentModules; // told by the reader
      return;
    }
    VntPluginLibrary library(module.file, folders);
    VntPluginInfo const& info = library.getInfo();
    LoadedPlugin const* const other = info.name.isEmpty() ? nullptr : findPlugin(info.name);
    if (!library.getProblem().isEmpty()) {
      // The elements that refer to it then say nothing new.
      if (info.name.isEmpty())
        ++absentModules;
      else
        unknownPlugins << info.name;
      if (library.isAbsent() && !isFile)
        qCDebug(pluginsLog, "%s", qPrintable(library.getProblem()));
      else
        complain(at(module.line) + library.getProblem());
    } else if (other) {
      complain(at(module.line) + tr("plug-in \"%1\" is passed over: \"%2\" is loaded already\n(%3, from %4)")
                                     .arg(module.file, info.name, info.file, other->info.file));
    } else {
      makePlugin(library, module);
    }
  }

  void makePlugin(VntPluginLibrary& library, VntConfiguration::Module const& module) {
    VntPluginInfo const& info = library.getInfo();
    std::unique_ptr<QObject> object;
    bool const made =
        call({info.name, nullptr}, tr("making the object of %1").arg(info.file.section('/', -1)),
             [&] { object.reset(library.load()); });
    auto* const plugin = qobject_cast<VntPlugin*>(object.get());
    if (plugin) {
      plugins.push_back({info, std::move(object), plugin});
      return;
    }
    unknownPlugins << info.name;
    if (object)
      complain(at(module.line) + tr("plug-in \"%1\": its object is no VntPlugin").arg(info.name));
    else if (made)
      complain(at(module.line) + library.getProblem());
  }

  VntExtension* findExtension(VntConfiguration::Reference const& wanted) {
    LoadedPlugin const* const loaded = findPlugin(wanted.plugin);
    if (!loaded) {
      complainOfUnknownPlugin(wanted);
      return nullptr;
    }
    if (!loaded->info.extensions.contains(wanted.extension)) {
      complain(at(wanted.line) +
               tr("plug-in \"%1\" has no extension \"%2\"").arg(wanted.plugin, wanted.extension));
      return nullptr;
    }
    VntExtension* extension = nullptr;
    bool const called = getExtension(*loaded, toSbString(wanted.extension), extension);
    if (!extension && called) {
      complain(at(wanted.line) +
               tr("plug-in \"%1\" names the extension \"%2\" in its metadata but does not have it")
                   .arg(wanted.plugin, wanted.extension));
    }
    return extension;
  }

  /// False when an exception left the plug-in.
  bool getExtension(LoadedPlugin const& loaded, SbString const& name, VntExtension*& extension) {
    bool const called = call({loaded.info.name, nullptr}, tr("getting extension \"%1\"").arg(toQString(name)),
                             [&] { extension = loaded.plugin->getExtension(name); });
    if (extension) pluginOf[extension] = loaded.info.name;
    return called;
  }

  /// Once a plug-in, and not where that only follows from a module that could not be loaded: which plug-in is
  /// in a file that is not there, nobody knows.
  void complainOfUnknownPlugin(VntConfiguration::Reference const& wanted) {
    if (unknownPlugins.contains(wanted.plugin)) return;
    unknownPlugins << wanted.plugin;
    QString const problem = at(wanted.line) + tr("there is no plug-in \"%1\"").arg(wanted.plugin);
    if (absentModules-- > 0)
      qCDebug(pluginsLog, "%s", qPrintable(problem));
    else
      complain(problem);
  }

  void activate(VntConfiguration::ActiveExtension const& entry) {
    VntExtension* const extension = findExtension(entry);
    if (!extension) return;
    QString const name = entry.extension;
    if (std::find(active.begin(), active.end(), extension) != active.end()) {
      return complain(at(entry.line) + tr("extension \"%1\" is active already").arg(name));
    }
    for (VntConfiguration::Reference const& reference : entry.controlled) {
      VntExtension* const controlled = findExtension(reference);
      if (!controlled) continue;
      bool taken = false;
      bool const called =
          call({entry.plugin, extension}, tr("adding \"%1\" to \"%2\"").arg(reference.extension, name),
               [&] { taken = extension->addControlled(controlled); });
      if (called && !taken) {
        complain(at(reference.line) +
                 tr("extension \"%1\" can not be controlled by \"%2\"").arg(reference.extension, name));
      }
    }
    if (call({entry.plugin, extension}, tr("activating extension \"%1\"").arg(name),
             [&] { extension->activate(); })) {
      active.push_back(extension);
    } else if (VntShell* const shell = VntShell::getInstance()) {
      Q_EMIT shell->extensionGone(extension, false);
    }
  }

  void activateDefault(VntConfiguration const& configuration) {
    if (configuration.defaultProfile.isEmpty()) return;
    for (VntConfiguration::Profile const& profile : configuration.profiles) {
      if (profile.name != configuration.defaultProfile) continue;
      for (VntConfiguration::ActiveExtension const& entry : profile.active) activate(entry);
      return;
    }
    complain(at(configuration.profilesLine) +
             tr("there is no profile \"%1\"").arg(configuration.defaultProfile));
  }

  // The end.

  void deactivate(VntExtension* extension) {
    call({pluginOf[extension], extension},
         tr("deactivating extension \"%1\"").arg(toQString(extension->getName())),
         [&] { extension->deactivate(); });
  }

  void destroyLastPlugin() {
    QString const name = plugins.back().info.name;
    call({name, nullptr}, tr("destroying its object"), [&] { plugins.pop_back(); });
    if (VntShell* const shell = VntShell::getInstance()) Q_EMIT shell->pluginGone(toSbString(name));
  }
};

VntPluginsManager::VntPluginsManager() : m_private(std::make_unique<Private>()) {}

VntPluginsManager::~VntPluginsManager() {
  while (!m_private->active.empty()) {
    VntExtension* const last = m_private->active.back();
    m_private->active.pop_back();
    m_private->deactivate(last);
  }
  while (!m_private->plugins.empty()) m_private->destroyLastPlugin();
  if (VntShell* const shell = VntShell::getInstance()) Q_EMIT shell->pluginGone(SbString());
}

VntPluginsManager* VntPluginsManager::getInstance() {
  if (!instance) instance = new VntPluginsManager;
  return instance;
}

void VntPluginsManager::releaseInstance() {
  delete instance;
  instance = nullptr;
}

bool VntPluginsManager::read(SbString const& textOrPath, bool isFile) {
  Private& p = *m_private;
  p.isFile = isFile;
  p.source = isFile ? toQString(textOrPath) : tr("built-in configuration");
  p.problems.clear();
  p.unknownPlugins.clear();
  p.absentModules = 0;

  QXmlStreamReader xml;
  QFile file(toQString(textOrPath));
  if (!isFile) {
    xml.addData(QByteArray::fromStdString(textOrPath.str()));
  } else if (file.open(QIODevice::ReadOnly)) {
    xml.setDevice(&file);
  } else {
    p.complain(p.source + ": " + file.errorString());
  }
  bool ok = p.problems.isEmpty();
  if (ok) {
    std::vector<std::pair<qint64, QString>> problems;
    VntConfiguration const configuration = VntConfiguration::read(xml, problems);
    ok = !xml.hasError();
    if (ok) {
      for (auto const& [line, problem] : problems) p.complain(p.at(line) + problem);
      p.loadModules(configuration.modules);
      p.activateDefault(configuration);
    } else {
      // What is wrong behind the first fault of the XML only follows from it.
      p.complain(p.at(xml.lineNumber()) + xml.errorString());
    }
  }
  showInStatusBar(p.problems);
  return ok;
}

VntExtension* VntPluginsManager::getExtension(SbString const& plugin, SbString const& extension) const {
  LoadedPlugin const* const loaded = m_private->findPlugin(toQString(plugin));
  VntExtension* result = nullptr;
  if (loaded) m_private->getExtension(*loaded, extension, result);
  return result;
}

std::vector<VntPluginInfo> VntPluginsManager::getPlugins() const {
  std::vector<VntPluginInfo> result;
  for (LoadedPlugin const& loaded : m_private->plugins) result.push_back(loaded.info);
  return result;
}

bool VntPluginsManager::call(VntExtension* extension, char const* what,
                             std::function<void()> const& function) {
  Private alone; // there need not be a manager
  Private& p = instance ? *instance->m_private : alone;
  // A configuration may be being read, whose problems are shown later.
  QStringList const before = std::exchange(p.problems, {});
  bool const ok = p.call({p.pluginOf[extension], extension}, QLatin1String(what), function);
  if (!ok) showInStatusBar(p.problems);
  p.problems = before + p.problems;
  return ok;
}

SbString VntPluginsManager::getPluginOf(VntExtension const* extension) {
  if (!instance) return SbString();
  auto const found = instance->m_private->pluginOf.find(extension);
  return found == instance->m_private->pluginOf.end() ? SbString() : toSbString(found->second);
}

SbString VntPluginsManager::getCalledPlugin() { return toSbString(callee.plugin); }
VntExtension* VntPluginsManager::getCalledExtension() { return callee.extension; }
