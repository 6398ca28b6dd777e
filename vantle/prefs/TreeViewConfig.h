#pragma once

#include <QMap>
#include <QString>

#include "vantle/prefs/ConfigStyle.h"

/// What the tree keeps in the settings; `group` is put in front of every key.
class TreeViewConfig {
 public:
  TreeViewConfig() = delete;

  static bool highlightSelectedNode(QString const& group);
  static void setSelectedNodeHighlighting(bool on, QString const& group);
  static bool showRealNodekitsCounter(QString const& group);
  static void setRealNodekitsCounter(bool on, QString const& group);
  /// From so many rows on, the children of a row are built when it is opened.
  static constexpr int DEFAULT_MAXIMUM_ROWS = 5'000'000, LEAST_MAXIMUM_ROWS = 1000,
                       MOST_MAXIMUM_ROWS = 100'000'000;
  static int maximumRows(QString const& group);
  static void setMaximumRows(int rows, QString const& group);
  // Both stand fixed: rows follow the graph at once. The setters are kept for their callers and store
  // nothing.
  static bool isDoubleBuffering(QString const& group);
  static void setDoubleBuffering(bool on, QString const& group);
  static int refreshingTime(QString const& group);
  static void setRefreshingTime(int milliseconds, QString const& group);

  /// "Node Type", "Node/Part Name", "Reference Count", "Node From Field".
  static QMap<QString, ConfigStyle> defaultStyles();
  static void saveStyles(QMap<QString, ConfigStyle> const& styles, QString const& group);
  static QMap<QString, ConfigStyle> readStyles(QString const& group);
};
