#include "vantle/prefs/SoVantleConfig.h"

#include <QSettings>

QSettings* SoVantleConfig::m_settings = nullptr;

namespace {

/// Callers put groups that end in a slash in front of names that begin with one.
QString singleSlashes(QString key) {
  while (key.contains(QStringLiteral("//"))) key.replace(QStringLiteral("//"), QStringLiteral("/"));
  return key;
}

QVariant read(QString const& key, QVariant const& defaultValue, bool* found) {
  QString const name = singleSlashes(key);
  QSettings const* const settings = SoVantleConfig::getSettingsInterface();
  if (found) *found = settings->contains(name);
  return settings->value(name, defaultValue);
}

bool write(QString const& key, QVariant const& value) {
  QSettings* const settings = SoVantleConfig::getSettingsInterface();
  settings->setValue(singleSlashes(key), value);
  return settings->isWritable();
}

} // namespace

QSettings* SoVantleConfig::getSettingsInterface() {
  if (!m_settings) m_settings = new QSettings(getOrganizationName(), getApplicationName());
  return m_settings;
}

void SoVantleConfig::deleteSettingsInterface() {
  delete m_settings;
  m_settings = nullptr;
}

QString SoVantleConfig::getApplicationName() { return QStringLiteral("VantleViewer"); }
QString SoVantleConfig::getOrganizationName() { return QStringLiteral("Qor"); }
QString SoVantleConfig::getOrganizationDomain() { return QStringLiteral("qor.example"); }

bool SoVantleConfig::writeEntry(QString const& key, bool value) { return write(key, value); }
bool SoVantleConfig::writeEntry(QString const& key, int value) { return write(key, value); }
bool SoVantleConfig::writeEntry(QString const& key, double value) { return write(key, value); }
bool SoVantleConfig::writeEntry(QString const& key, QString const& value) { return write(key, value); }
bool SoVantleConfig::writeEntry(QString const& key, QList<QString> const& value) { return write(key, value); }

QString SoVantleConfig::readEntry(QString const& key, QString const& defaultValue, bool* found) {
  return read(key, defaultValue, found).toString();
}
int SoVantleConfig::readNumEntry(QString const& key, int defaultValue, bool* found) {
  return read(key, defaultValue, found).toInt();
}
double SoVantleConfig::readDoubleEntry(QString const& key, double defaultValue, bool* found) {
  return read(key, defaultValue, found).toDouble();
}
bool SoVantleConfig::readBoolEntry(QString const& key, bool defaultValue, bool* found) {
  return read(key, defaultValue, found).toBool();
}
QList<QString> SoVantleConfig::readListEntry(QString const& key, bool* found) {
  return read(key, QVariant(), found).toStringList();
}

int SoVantleConfig::generalSetting(QString const& name) {
  static QMap<QString, int> const defaults{{QStringLiteral("titleFixedHeight"), 20},
                                           {QStringLiteral("menuMaximumWidth"), 110},
                                           {QStringLiteral("FieldWatchHeight"), 0}};
  return readNumEntry(QStringLiteral("/GeneralSettings/") + name, defaults.value(name, 0));
}
