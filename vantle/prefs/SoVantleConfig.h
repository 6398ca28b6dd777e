#pragma once

#include <QList>
#include <QString>

class QSettings;

/// The settings of the process, in one store that is made on first use. A key's double slashes count as one.
class SoVantleConfig {
 public:
  SoVantleConfig() = delete;

  static QSettings* getSettingsInterface();
  static void deleteSettingsInterface();
  static QString getApplicationName();
  static QString getOrganizationName();
  static QString getOrganizationDomain();

  // False when the store can not be written.
  static bool writeEntry(QString const& key, bool value);
  static bool writeEntry(QString const& key, int value);
  static bool writeEntry(QString const& key, double value);
  static bool writeEntry(QString const& key, QString const& value);
  static bool writeEntry(QString const& key, QList<QString> const& value);
  /// A text literal is no boolean.
  static bool writeEntry(QString const& key, char const* value) {
    return writeEntry(key, QString::fromUtf8(value));
  }

  // `found` (may be null) tells whether the key is stored.
  static QString readEntry(QString const& key, QString const& defaultValue = QString(),
                           bool* found = nullptr);
  static int readNumEntry(QString const& key, int defaultValue = 0, bool* found = nullptr);
  static double readDoubleEntry(QString const& key, double defaultValue = 0, bool* found = nullptr);
  static bool readBoolEntry(QString const& key, bool defaultValue = false, bool* found = nullptr);
  static QList<QString> readListEntry(QString const& key, bool* found = nullptr);

  /// "titleFixedHeight", "menuMaximumWidth", "FieldWatchHeight"; 0 for any other name that is not stored.
  static int generalSetting(QString const& name);

 private:
  static QSettings* m_settings;
};
