#pragma once

#include "vantle/prefs/NodeOverviewConfig.h"

/// What the field watch keeps in the settings: the same as a node overview, under a group of its own.
class FieldWatchConfig {
 public:
  FieldWatchConfig() = delete;

  static int listColumnWidth(int column, QString const& group) {
    return NodeOverviewConfig::listColumnWidth(column, group);
  }
  static void setListColumnWidth(int column, int width, QString const& group) {
    NodeOverviewConfig::setListColumnWidth(column, width, group);
  }
  static QMap<QString, ConfigStyle> defaultStyles() { return NodeOverviewConfig::defaultStyles(); }
  static void saveStyles(QMap<QString, ConfigStyle> const& styles, QString const& group) {
    NodeOverviewConfig::saveStyles(styles, group);
  }
  static QMap<QString, ConfigStyle> readStyles(QString const& group) {
    return NodeOverviewConfig::readStyles(group);
  }
};
