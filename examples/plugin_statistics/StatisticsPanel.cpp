#include "StatisticsPanel.h"

#include <kestrava/nodes/SoNode.h>
#include <vantle/session/VntNodeInfo.h>
#include <vnt/QtText.h>
#include <vnt/VntServices.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "StatisticsPreferences.h"

namespace {

using Preferences = StatisticsPreferences;
constexpr int INTERVAL = 200; // milliseconds between two counts

QString number(std::uint64_t value) { return QLocale(QLocale::English).toString(qulonglong(value)); }
QString memory(std::uint64_t bytes) { return QLocale(QLocale::English).formattedDataSize(qint64(bytes), 1); }

/// Sorts by number, where the text has separators and units.
class Row : public QTreeWidgetItem {
 public:
  explicit Row(SceneCount::Row const& row) {
    SceneCount::Numbers const& n = row.numbers;
    setText(Preferences::TYPE, toQString(row.type.getName().toString()));
    setIcon(Preferences::TYPE, VntNodeInfo::icon(VntNodeInfo::category(row.type)));
    set(Preferences::NODES, n.nodes, number(n.nodes));
    set(Preferences::PLACES, n.places, number(n.places));
    std::uint64_t const triangles = Preferences::isCountedOnce() ? n.triangles : n.trianglesInPlaces;
    set(Preferences::TRIANGLES, triangles, triangles ? number(triangles) : QString());
    set(Preferences::MEMORY, n.bytes, memory(n.bytes));
  }
  bool operator<(QTreeWidgetItem const& other) const override {
    int const column = treeWidget()->sortColumn();
    if (column == Preferences::TYPE) return QTreeWidgetItem::operator<(other);
    return data(column, Qt::UserRole).toULongLong() < other.data(column, Qt::UserRole).toULongLong();
  }

 private:
  void set(int column, std::uint64_t value, QString const& text) {
    setText(column, text);
    setData(column, Qt::UserRole, qulonglong(value));
    setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
  }
};

} // namespace

StatisticsPanel::StatisticsPanel(QWidget* parent) : QWidget(parent), m_sensor(nodeChangedCB, this) {
  // With priority 0 the sensor is called within each change, in hosts without an idle queue, too.
  m_sensor.setPriority(0);
  m_sensor.setDeleteCallback(nodeDiesCB, this);
  m_timer.setSingleShot(true);
  m_timer.setInterval(INTERVAL);
  connect(&m_timer, &QTimer::timeout, this, &StatisticsPanel::countNow);

  m_icon = new QLabel;
  m_title = new QLabel;
  m_title->setObjectName("statisticsTitle");
  m_title->setTextFormat(Qt::PlainText);
  QFont bold = m_title->font();
  bold.setBold(true);
  m_title->setFont(bold);
  m_summary = new QLabel;
  m_summary->setObjectName("statisticsSummary");
  m_summary->setWordWrap(true);
  m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);

  m_table = new QTreeWidget;
  m_table->setObjectName("statisticsTable");
  m_table->setRootIsDecorated(false);
  m_table->setUniformRowHeights(true);
  m_table->setAlternatingRowColors(true);
  m_table->setSortingEnabled(true);
  m_table->setHeaderLabels({tr("Type"), tr("Nodes"), tr("Places"), tr("Triangles"), tr("Memory")});
  m_table->headerItem()->setToolTip(Preferences::PLACES, tr("A shared node stands in several places"));
  m_table->headerItem()->setToolTip(
      Preferences::MEMORY,
      tr("Nodes and fields at their usual size, and the arrays, texts and images in them"));
  for (int column = Preferences::NODES; column < Preferences::COLUMNS; ++column) {
    m_table->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
  }
  m_table->sortByColumn(Preferences::NODES, Qt::DescendingOrder);
  m_table->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  m_table->header()->setStretchLastSection(false);

  auto* const head = new QHBoxLayout;
  head->addWidget(m_icon);
  head->addWidget(m_title, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(head);
  layout->addWidget(m_summary);
  layout->addWidget(m_table, 1);
  updateSettings();
}

void StatisticsPanel::setNode(SoFieldContainer* container) {
  auto* const node = dynamic_cast<SoNode*>(container);
  m_sensor.detach();
  if (node) m_sensor.attach(node);
  if (isVisible()) countNow();
}

void StatisticsPanel::nodeChangedCB(void* data, SoSensor*) {
  auto* const panel = static_cast<StatisticsPanel*>(data);
  if (panel->isVisible() && !panel->m_timer.isActive()) panel->m_timer.start();
}

void StatisticsPanel::nodeDiesCB(void* data, SoSensor*) {
  auto* const panel = static_cast<StatisticsPanel*>(data);
  if (panel->isVisible()) panel->countNow();
}

void StatisticsPanel::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  countNow();
}

void StatisticsPanel::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  m_timer.stop();
}

void StatisticsPanel::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  // In a narrow dock the table scrolls sideways: without the types the numbers are of no use.
  bool const isNarrow = width() < 50 * fontMetrics().horizontalAdvance('n');
  m_table->header()->setSectionResizeMode(Preferences::TYPE,
                                          isNarrow ? QHeaderView::ResizeToContents : QHeaderView::Stretch);
}

void StatisticsPanel::updateSettings() {
  for (int column = 0; column < Preferences::COLUMNS; ++column) {
    m_table->setColumnHidden(column, !Preferences::isShown(Preferences::Column(column)));
  }
  showCount();
}

void StatisticsPanel::countNow() {
  m_timer.stop();
  SoNode* const node = m_sensor.getAttachedNode();
  showTitle();
  SceneCount count;
  if (node) count = SceneCount::of(node, VntServices::getInstance()->getSceneGraph());
  // Most changes of a scene only move things: then the table stays, with the user's place in it.
  if (count.rows == m_count.rows) return;
  m_count = count;
  showCount();
}

void StatisticsPanel::showTitle() {
  SoNode* const node = m_sensor.getAttachedNode();
  m_icon->setVisible(node);
  if (!node) {
    m_title->setText(tr("No node is selected"));
    return;
  }
  m_icon->setPixmap(VntNodeInfo::icon(node).pixmap(16, 16));
  QString const type = toQString(node->getTypeId().getName().toString());
  QString const name = toQString(node->getName().toString());
  m_title->setText(name.isEmpty() ? type : QStringLiteral("%1 \"%2\"").arg(type, name));
}

void StatisticsPanel::showCount() {
  SceneCount::Numbers const& n = m_count.total;
  m_summary->setText(m_count.rows.empty()
                         ? QString()
                         : tr("Nodes: %1 (places: %2)\nTriangles: %3 (of shared shapes once: %4)\nMemory: %5")
                               .arg(number(n.nodes), number(n.places), number(n.trianglesInPlaces),
                                    number(n.triangles), memory(n.bytes)));
  // Sorted once, at the end.
  m_table->setSortingEnabled(false);
  m_table->clear();
  QList<QTreeWidgetItem*> rows;
  for (SceneCount::Row const& row : m_count.rows) rows << new Row(row);
  m_table->addTopLevelItems(rows);
  m_table->setSortingEnabled(true);
}

void StatisticsPanel::copyToClipboard() const {
  QString text = m_title->text() + '\n' + m_summary->text() + '\n';
  for (int row = 0; row < m_table->topLevelItemCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < Preferences::COLUMNS; ++column) {
      cells << m_table->topLevelItem(row)->text(column);
    }
    text += cells.join('\t') + '\n';
  }
  QGuiApplication::clipboard()->setText(text);
}
