#include "vantle/prefs/TreeViewConfig.h"

#include <QApplication>

#include "vantle/prefs/ConfigStyleSet.h"
#include "vantle/prefs/SoVantleConfig.h"

bool TreeViewConfig::highlightSelectedNode(QString const& group) {
  return SoVantleConfig::readBoolEntry(group + QStringLiteral("/HighlightSelectedNode"), true);
}
void TreeViewConfig::setSelectedNodeHighlighting(bool on, QString const& group) {
  SoVantleConfig::writeEntry(group + QStringLiteral("/HighlightSelectedNode"), on);
}
bool TreeViewConfig::showRealNodekitsCounter(QString const& group) {
  return SoVantleConfig::readBoolEntry(group + QStringLiteral("/RealNodekitsCounter"), false);
}
void TreeViewConfig::setRealNodekitsCounter(bool on, QString const& group) {
  SoVantleConfig::writeEntry(group + QStringLiteral("/RealNodekitsCounter"), on);
}

int TreeViewConfig::maximumRows(QString const& group) {
  int const rows = SoVantleConfig::readNumEntry(group + QStringLiteral("/MaximumRows"), DEFAULT_MAXIMUM_ROWS);
  return rows < LEAST_MAXIMUM_ROWS || rows > MOST_MAXIMUM_ROWS ? DEFAULT_MAXIMUM_ROWS : rows;
}
void TreeViewConfig::setMaximumRows(int rows, QString const& group) {
  SoVantleConfig::writeEntry(group + QStringLiteral("/MaximumRows"), rows);
}

bool TreeViewConfig::isDoubleBuffering(QString const&) { return true; }
void TreeViewConfig::setDoubleBuffering(bool, QString const&) {}
int TreeViewConfig::refreshingTime(QString const&) { return 100; }
void TreeViewConfig::setRefreshingTime(int, QString const&) {}

QMap<QString, ConfigStyle> TreeViewConfig::defaultStyles() {
  QFont const font = QApplication::font();
  QFont italic = font;
  italic.setItalic(true);
  QFont serif(QStringLiteral("Times New Roman"), font.pointSize());
  serif.setWeight(font.weight());
  return {{QStringLiteral("Node Type"), {font, Qt::black, true}},
          {QStringLiteral("Node/Part Name"), {italic, Qt::darkGreen, true}},
          {QStringLiteral("Reference Count"), {font, Qt::blue, true}},
          {QStringLiteral("Node From Field"), {serif, Qt::black, true}}};
}

void TreeViewConfig::saveStyles(QMap<QString, ConfigStyle> const& styles, QString const& group) {
  SoSaveStyles(styles, defaultStyles().keys(), group);
}

QMap<QString, ConfigStyle> TreeViewConfig::readStyles(QString const& group) {
  return SoReadStyles(defaultStyles(), group);
}
