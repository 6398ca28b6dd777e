#pragma once

#include <QMap>
#include <QString>

#include "vantle/prefs/ConfigStyle.h"

/// What a list of fields keeps in the settings; `group` is put in front of every key.
class NodeOverviewConfig {
 public:
  NodeOverviewConfig() = delete;

  static bool showCatalogPart(QString const& group);
  static void setCatalogPart(bool on, QString const& group);
  /// -1: nothing stored.
  static int listColumnWidth(int column, QString const& group);
  static void setListColumnWidth(int column, int width, QString const& group);

  /// "Default Value", "Changed Value".
  static QMap<QString, ConfigStyle> defaultStyles();
  static void saveStyles(QMap<QString, ConfigStyle> const& styles, QString const& group);
  static QMap<QString, ConfigStyle> readStyles(QString const& group);
};
