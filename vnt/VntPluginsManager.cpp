#include "vnt/VntPluginsManager.h"

#include <QFile>
#include <QLoggingCategory>
#include <QXmlStreamReader>
#include <vector>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

namespace {

Q_LOGGING_CATEGORY(pluginsLog, "vnt.plugins", QtWarningMsg)

VntPluginsManager* instance = nullptr;

SbString toSbString(QString const& text) { return SbString(text.toStdString()); }

struct Reference {
  SbString plugin, extension;
};

struct ActiveExtension : Reference {
  std::vector<Reference> controlled;
};

struct Profile {
  SbString name;
  std::vector<ActiveExtension> active;
};

struct Configuration {
  std::vector<SbString> modules;
  SbString defaultProfile;
  std::vector<Profile> profiles;
};

Reference readReference(QXmlStreamReader const& xml) {
  auto const attributes = xml.attributes();
  return {toSbString(attributes.value(QLatin1String("plugin")).toString()),
          toSbString(attributes.value(QLatin1String("extension")).toString())};
}

/// Elements that are not known are passed over, so that a configuration may hold more than this framework
/// uses.
Configuration parse(QXmlStreamReader& xml) {
  Configuration result;
  if (xml.readNextStartElement() && xml.name() != QLatin1String("configuration")) {
    xml.raiseError(QStringLiteral("the root element is \"%1\", not \"configuration\"").arg(xml.name()));
  }
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    auto const name = xml.name();
    auto const attribute = [&](char const* key) {
      return toSbString(xml.attributes().value(QLatin1String(key)).toString());
    };
    if (name == QLatin1String("loadPlugin")) {
      result.modules.push_back(attribute("file"));
    } else if (name == QLatin1String("profiles")) {
      result.defaultProfile = attribute("default");
    } else if (name == QLatin1String("profile")) {
      result.profiles.push_back({attribute("name"), {}});
    } else if (name == QLatin1String("activeExtension") && !result.profiles.empty()) {
      result.profiles.back().active.push_back({readReference(xml), {}});
    } else if (name == QLatin1String("controlledExtension") && !result.profiles.empty() &&
               !result.profiles.back().active.empty()) {
      result.profiles.back().active.back().controlled.push_back(readReference(xml));
    }
  }
  return result;
}

/// A bare name stands for "lib<name>.so", beside this library or else where the dynamic linker searches.
SbString modulePath(SbString const& file) {
  if (file.str().find('/') != std::string::npos) return SbFileHelper::expandString(file);
  SbString const name = "lib" + file.str() + ".so";
  SbString const own = SoDynamicLibManager::getLibraryFromSymbol(
      reinterpret_cast<void const*>(&VntPluginsManager::getInstance));
  SbString const beside = SbFileHelper::getDirName(own) + name.str();
  return SbFileHelper::exists(beside) ? beside : name;
}

} // namespace

struct VntPluginsManager::Private {
  std::vector<std::unique_ptr<VntPlugin>> plugins;
  std::vector<VntExtension*> active;
  bool modulesMustExist = false;

  void complain(SbString const& what) const {
    if (modulesMustExist)
      SoDebugError::post("VntPluginsManager::read", "%s", what.c_str());
    else
      qCDebug(pluginsLog, "%s", what.c_str());
  }

  void loadModule(SbString const& file) {
    // The module stays loaded when its plug-in goes: code of it may still be in use by the toolkit.
    void* const library = SoDynamicLibManager::open(modulePath(file));
    if (!library) return complain("plug-in " + file.str() + ": " + SoDynamicLibManager::getLastError().str());
    auto* const version =
        reinterpret_cast<int (*)()>(SoDynamicLibManager::symbol(library, "vntPluginVersion"));
    auto* const create =
        reinterpret_cast<VntPlugin* (*)()>(SoDynamicLibManager::symbol(library, "vntCreatePlugin"));
    // These are faults of the module, whoever named it.
    if (!version || !create) {
      SoDebugError::post("VntPluginsManager::read", "%s is not a plug-in.", file.c_str());
    } else if (version() != VntPlugin::VERSION) {
      SoDebugError::post("VntPluginsManager::read",
                         "plug-in %s is made for version %d of the framework, this is %d.", file.c_str(),
                         version(), VntPlugin::VERSION);
    } else {
      plugins.emplace_back(create());
    }
  }

  VntExtension* find(Reference const& wanted) const {
    for (auto const& plugin : plugins) {
      if (plugin->getName() == wanted.plugin) return plugin->getExtension(wanted.extension);
    }
    return nullptr;
  }

  VntExtension* findOrComplain(Reference const& wanted) const {
    VntExtension* const extension = find(wanted);
    if (!extension)
      complain("plug-in " + wanted.plugin.str() + " has no extension " + wanted.extension.str());
    return extension;
  }

  void activate(Profile const& profile) {
    for (ActiveExtension const& entry : profile.active) {
      VntExtension* const extension = findOrComplain(entry);
      if (!extension) continue;
      for (Reference const& editor : entry.controlled) {
        if (VntExtension* const controlled = findOrComplain(editor)) extension->addControlled(controlled);
      }
      extension->activate();
      active.push_back(extension);
    }
  }
};

VntPluginsManager::VntPluginsManager() : m_private(std::make_unique<Private>()) {}

VntPluginsManager::~VntPluginsManager() {
  while (!m_private->active.empty()) {
    m_private->active.back()->deactivate();
    m_private->active.pop_back();
  }
  while (!m_private->plugins.empty()) m_private->plugins.pop_back();
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
  QXmlStreamReader xml;
  QFile file(QString::fromStdString(textOrPath.str()));
  char const* const source = isFile ? textOrPath.c_str() : "built-in configuration";
  if (!isFile) {
    xml.addData(QByteArray::fromStdString(textOrPath.str()));
  } else if (file.open(QIODevice::ReadOnly)) {
    xml.setDevice(&file);
  } else {
    SoDebugError::post("VntPluginsManager::read", "%s: %s", source, qPrintable(file.errorString()));
    return false;
  }
  Configuration const configuration = parse(xml);
  if (xml.hasError()) {
    SoDebugError::post("VntPluginsManager::read", "%s:%lld: %s", source, xml.lineNumber(),
                       qPrintable(xml.errorString()));
    return false;
  }
  m_private->modulesMustExist = isFile;
  for (SbString const& module : configuration.modules) m_private->loadModule(module);
  for (Profile const& profile : configuration.profiles) {
    if (profile.name == configuration.defaultProfile) m_private->activate(profile);
  }
  return true;
}

VntExtension* VntPluginsManager::getExtension(SbString const& plugin, SbString const& extension) const {
  return m_private->find({plugin, extension});
}
