#include "vnt/VntPluginLibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QVersionNumber>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoPreferences.h"
#include "vnt/QtText.h"
#include "vnt/VntPlugin.h"

namespace {

constexpr char PATH_KEY[] = "KSV_VANTLE_PLUGIN_PATH";

QString tr(char const* text) { return QCoreApplication::translate("VntPluginLibrary", text); }

/// "vantle.VntPlugin/1" without and with the number.
QString interfaceName(QString const& iid) { return iid.section('/', 0, 0); }
QString interfaceVersion(QString const& iid) { return iid.section('/', 1); }

} // namespace

QStringList VntPluginLibrary::folders(QStringList& problems) {
  QStringList result;
  SbString const path = SbFileHelper::expandString(SoPreferences::getString(PATH_KEY));
  for (QString const& entry : toQString(path).split(':', Qt::SkipEmptyParts)) {
    if (QDir::isAbsolutePath(entry))
      result << QDir::cleanPath(entry);
    else
      problems << tr("%1: the folder \"%2\" is passed over, it is not absolute")
                      .arg(QLatin1String(PATH_KEY), entry);
  }
  QFileInfo const own(
      toQString(SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&folders))));
  result << own.absolutePath() << own.absolutePath() + "/vantle/plugins";
  result.removeDuplicates();
  return result;
}

VntPluginLibrary::VntPluginLibrary(QString const& name, QStringList const& folders) {
  find(name, folders);
  if (m_problem.isEmpty()) judge();
  if (m_problem.isEmpty()) return;
  m_problem = tr("plug-in \"%1\": %2").arg(name, m_problem);
  if (!m_info.file.isEmpty()) m_problem += "\n(" + m_info.file + ')';
}

void VntPluginLibrary::find(QString const& name, QStringList const& folders) {
  if (name.contains('/')) {
    m_problem = tr("a plug-in is named without folder; %1 tells where it is").arg(QLatin1String(PATH_KEY));
    return;
  }
  QString const file = "lib" + name + ".so";
  for (QString const& folder : folders) {
    QFileInfo const candidate(folder + '/' + file);
    if (!candidate.exists()) continue;
    m_info.file = candidate.absoluteFilePath();
    if (!candidate.isFile() || !candidate.isReadable()) m_problem = tr("%1 can not be read").arg(file);
    return;
  }
  m_absent = true;
  m_problem = tr("there is no %1\n(looked in %2)").arg(file, folders.join(", "));
}

void VntPluginLibrary::judge() {
  m_loader.setFileName(m_info.file);
  QJsonObject const all = m_loader.metaData();
  QJsonObject const own = all.value("MetaData").toObject();
  m_info.name = own.value("name").toString();
  m_info.version = own.value("version").toString();
  m_info.description = own.value("description").toString();
  for (QJsonValue const& extension : own.value("extensions").toArray()) {
    if (!extension.toString().isEmpty()) m_info.extensions << extension.toString();
  }

  QString const iid = all.value("IID").toString(), wanted = QStringLiteral(VNT_PLUGIN_IID);
  int const qt = all.value("version").toInt();
  QVersionNumber const itsQt(qt >> 16, qt >> 8 & 255), ourQt = QLibraryInfo::version();
  QString const file = m_info.file.section('/', -1);
  if (all.isEmpty()) {
    m_problem = tr("%1 is no plug-in: it %2").arg(file, m_loader.errorString().section("' ", -1));
  } else if (itsQt.majorVersion() != ourQt.majorVersion() || itsQt.minorVersion() > ourQt.minorVersion()) {
    m_problem = tr("%1 is made for Qt %2, this is %3").arg(file, itsQt.toString(), ourQt.toString());
  } else if (interfaceName(iid) != interfaceName(wanted)) {
    m_problem = tr("%1 is a plug-in for something else (%2)").arg(file, iid);
  } else if (iid != wanted) {
    m_problem = tr("%1 is made for version %2 of the framework, this is %3")
                    .arg(file, interfaceVersion(iid), interfaceVersion(wanted));
  } else if (m_info.name.isEmpty()) {
    m_problem = tr("%1 has no \"name\" in its metadata").arg(file);
  } else if (m_info.extensions.isEmpty()) {
    m_problem = tr("%1 has no \"extensions\" in its metadata").arg(file);
  }
}

QObject* VntPluginLibrary::load() {
  // Without the first one a function that is missing would end the process at its first call.
  m_loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
  QObject* const object = m_loader.instance();
  if (!object) m_problem = tr("plug-in \"%1\": %2").arg(m_info.name, m_loader.errorString());
  return object;
}
