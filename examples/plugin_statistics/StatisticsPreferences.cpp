#include "StatisticsPreferences.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QSettings>
#include <QVBoxLayout>

namespace {

// A plug-in keeps its settings apart from the inspector's.
constexpr char COUNTED_ONCE[] = "CountSharedOnce";
constexpr char const* SHOWN[] = {nullptr, "ShowNodes", "ShowPlaces", "ShowTriangles", "ShowMemory"};

QSettings settings() { return QSettings("Example", "VantleStatistics"); }

} // namespace

StatisticsPreferences::StatisticsPreferences() {
  setObjectName("statistics_preferences");
  auto* const layout = new QVBoxLayout(this);
  m_countedOnce = new QCheckBox(tr("Count the triangles of shared shapes &once"));
  m_countedOnce->setObjectName("countedOnce");
  layout->addWidget(m_countedOnce);

  auto* const columns = new QGroupBox(tr("Columns"));
  auto* const inside = new QVBoxLayout(columns);
  QString const names[] = {QString(), tr("&Nodes"), tr("&Places"), tr("&Triangles"), tr("&Memory")};
  for (int column = NODES; column < COLUMNS; ++column) {
    m_shown[column] = new QCheckBox(names[column]);
    m_shown[column]->setObjectName(SHOWN[column]);
    inside->addWidget(m_shown[column]);
  }
  layout->addWidget(columns);
  layout->addStretch();
}

bool StatisticsPreferences::isShown(Column column) {
  return column == TYPE || settings().value(SHOWN[column], true).toBool();
}

bool StatisticsPreferences::isCountedOnce() { return settings().value(COUNTED_ONCE, false).toBool(); }

void StatisticsPreferences::read() {
  m_countedOnce->setChecked(isCountedOnce());
  for (int column = NODES; column < COLUMNS; ++column) m_shown[column]->setChecked(isShown(Column(column)));
}

void StatisticsPreferences::write() {
  QSettings store = settings();
  store.setValue(COUNTED_ONCE, m_countedOnce->isChecked());
  for (int column = NODES; column < COLUMNS; ++column)
    store.setValue(SHOWN[column], m_shown[column]->isChecked());
  Q_EMIT changed();
}
