#include "vantle/prefs/NodeOverviewConfig.h"

#include <QApplication>

#include "vantle/prefs/ConfigStyleSet.h"
#include "vantle/prefs/SoVantleConfig.h"

namespace {

QString widthKey(int column, QString const& group) {
  return group + QStringLiteral("/ListColumnWidth/") + QString::number(column);
}

} // namespace

bool NodeOverviewConfig::showCatalogPart(QString const& group) {
  return SoVantleConfig::readBoolEntry(group + QStringLiteral("/ShowCatalogPart"), false);
}
void NodeOverviewConfig::setCatalogPart(bool on, QString const& group) {
  SoVantleConfig::writeEntry(group + QStringLiteral("/ShowCatalogPart"), on);
}

int NodeOverviewConfig::listColumnWidth(int column, QString const& group) {
  static int const defaults[] = {20, 20, 0, 0};
  return SoVantleConfig::readNumEntry(widthKey(column, group),
                                      column >= 0 && column < 4 ? defaults[column] : -1);
}
void NodeOverviewConfig::setListColumnWidth(int column, int width, QString const& group) {
  SoVantleConfig::writeEntry(widthKey(column, group), width);
}

QMap<QString, ConfigStyle> NodeOverviewConfig::defaultStyles() {
  QFont const font = QApplication::font();
  return {{QStringLiteral("Default Value"), {font, Qt::black, true}},
          {QStringLiteral("Changed Value"), {font, Qt::red, true}}};
}

void NodeOverviewConfig::saveStyles(QMap<QString, ConfigStyle> const& styles, QString const& group) {
  SoSaveStyles(styles, defaultStyles().keys(), group);
}

QMap<QString, ConfigStyle> NodeOverviewConfig::readStyles(QString const& group) {
  return SoReadStyles(defaultStyles(), group);
}
