#include "extender_base/VntTableChart.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>

#include "kestrava/fields/SoMField.h"

namespace {

constexpr int MARGIN = 3;
constexpr int LEAST_HEIGHT = 24; // with less there is nothing to see

} // namespace

VntTableChart::VntTableChart(VntTableEdits& edits, VntTableScan& scan, QWidget* parent)
    : QWidget(parent), m_edits(edits), m_scan(scan) {
  setMouseTracking(true);
  setMaximumHeight(160);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  setToolTip(tr("All values from the first to the last; click to go to one"));
  connect(&scan, &VntTableScan::finished, this, qOverload<>(&QWidget::update));
}

QSize VntTableChart::sizeHint() const { return {200, fontMetrics().height() * 5}; }

void VntTableChart::setCurrentRow(int row) {
  if (std::exchange(m_currentRow, row) != row) update();
}

QRect VntTableChart::plot() const {
  int const legend = fontMetrics().height();
  return rect().adjusted(MARGIN, legend + MARGIN, -MARGIN, -MARGIN);
}

int VntTableChart::rowAt(int x) const {
  int const count = m_scan.getResult().count;
  QRect const area = plot();
  if (count == 0 || area.width() < 2) return -1;
  double const t = static_cast<double>(x - area.left()) / (area.width() - 1);
  return std::clamp(static_cast<int>(std::lround(t * (count - 1))), 0, count - 1);
}

int VntTableChart::xOf(int row) const {
  int const last = std::max(1, m_scan.getResult().count - 1);
  return plot().left() +
         static_cast<int>(std::lround(static_cast<double>(row) / last * (plot().width() - 1)));
}

QColor VntTableChart::lineColor(int column) const {
  // Red, green and blue for the axes and the primary colours, as everywhere; text colour for what follows
  // them.
  constexpr int HUES[] = {0, 120, 220};
  bool const isDark = palette().color(QPalette::Base).lightness() < 128;
  if (m_edits.getAccess().getNumNumbers() == 1) return palette().color(QPalette::Text);
  if (column < 3) return QColor::fromHsv(HUES[column], isDark ? 150 : 230, isDark ? 255 : 165);
  if (m_edits.getAccess().getNumNumbers() == 4) return palette().color(QPalette::Text);
  return QColor::fromHsv(column * 53 % 360, isDark ? 120 : 200, isDark ? 230 : 170);
}

QString VntTableChart::hoverText() const {
  SoMField const* const field = m_edits.getField();
  if (!field || m_hoverRow < 0 || m_hoverRow >= field->getNum()) return {};
  VntTableAccess const& access = m_edits.getAccess();
  constexpr int MOST = 4;
  QStringList values;
  for (int column = 0; column < std::min(MOST, access.getNumNumbers()); ++column)
    values << access.getText(*field, m_hoverRow, column);
  if (access.getNumNumbers() > MOST) values << QStringLiteral("...");
  return tr("%1: %2", "index and values").arg(m_hoverRow).arg(values.join(QStringLiteral("  ")));
}

void VntTableChart::drawColumn(QPainter& painter, int column, VntTableScan::Range const& all) const {
  VntTableScan::Result const& result = m_scan.getResult();
  QRect const area = plot();
  double const height = area.height() - 1;
  // Halves: the whole range of double has no difference.
  auto const yOf = [&](double number) {
    return all.high > all.low
               ? area.bottom() - (number / 2 - all.low / 2) / (all.high / 2 - all.low / 2) * height
               : area.top() + height / 2;
  };
  VntTableScan::Range const* const groups =
      &result.groups[static_cast<std::size_t>(column) * result.numGroups];
  painter.setPen(lineColor(column));
  QList<QLineF> lines;
  double lastX = 0, lastLow = 0, lastHigh = 0;
  bool hasLast = false;
  for (int i = 0; i < result.numGroups; ++i) {
    VntTableScan::Range const& group = groups[i];
    if (group.isEmpty()) {
      hasLast = false;
      continue;
    }
    double const x = area.left() + (result.numGroups > 1
                                        ? static_cast<double>(i) / (result.numGroups - 1) * (area.width() - 1)
                                        : area.width() / 2.0);
    double const low = yOf(group.low), high = yOf(group.high);
    lines << QLineF(x, low, x, high - (low == high ? 1 : 0));
    // Ranges that do not meet are joined, so that the line is one.
    if (hasLast) lines << QLineF(lastX, (lastLow + lastHigh) / 2, x, (low + high) / 2);
    lastX = x;
    lastLow = low;
    lastHigh = high;
    hasLast = true;
  }
  painter.drawLines(lines);
}

void VntTableChart::drawLegend(QPainter& painter) const {
  QRect const line(MARGIN, MARGIN / 2, width() - 2 * MARGIN, fontMetrics().height());
  QString const hover = hoverText();
  painter.setPen(palette().color(QPalette::Text));
  if (!hover.isEmpty()) {
    painter.drawText(line, Qt::AlignRight, fontMetrics().elidedText(hover, Qt::ElideRight, line.width()));
    if (fontMetrics().horizontalAdvance(hover) > line.width() / 2) return;
  }
  int x = line.left();
  auto const& columns = m_edits.getAccess().getColumns();
  int const numNumbers = m_edits.getAccess().getNumNumbers();
  for (int column = 0; column < numNumbers && numNumbers > 1; ++column) {
    int const textWidth = fontMetrics().horizontalAdvance(columns[column].name);
    if (x + textWidth > line.right() / 2 && !hover.isEmpty()) break;
    if (x + textWidth > line.right()) break;
    painter.setPen(lineColor(column));
    painter.drawText(QRect(x, line.top(), textWidth + 2, line.height()), Qt::AlignLeft, columns[column].name);
    x += textWidth + 10;
  }
}

void VntTableChart::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  if (plot().height() < LEAST_HEIGHT / 2 || plot().width() < 2) return;
  VntTableScan::Result const& result = m_scan.getResult();
  if (result.count > 0 && m_currentRow >= 0 && m_currentRow < result.count) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawLine(xOf(m_currentRow), plot().top(), xOf(m_currentRow), plot().bottom());
  }
  VntTableScan::Range all = {std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity()};
  for (VntTableScan::Range const& column : result.columns) all.add(column);
  painter.setRenderHint(QPainter::Antialiasing, result.numGroups < width() / 2);
  painter.setOpacity(0.8); // a component that fills the chart still shows those behind it
  for (int column = 0; column < static_cast<int>(result.columns.size()); ++column)
    drawColumn(painter, column, all);
  painter.setOpacity(1);
  drawLegend(painter);
}

void VntTableChart::mouseMoveEvent(QMouseEvent* event) {
  m_hoverRow = rowAt(qRound(event->position().x()));
  update();
  if ((event->buttons() & Qt::LeftButton) && m_hoverRow >= 0) Q_EMIT rowClicked(m_hoverRow);
}

void VntTableChart::mousePressEvent(QMouseEvent* event) {
  int const row = rowAt(qRound(event->position().x()));
  if (event->button() == Qt::LeftButton && row >= 0) Q_EMIT rowClicked(row);
}

void VntTableChart::leaveEvent(QEvent*) {
  m_hoverRow = -1;
  update();
}
