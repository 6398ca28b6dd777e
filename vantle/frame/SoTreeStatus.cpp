#include "vantle/frame/SoTreeStatus.h"

#include <QLocale>
#include <QPainter>
#include <QStatusBar>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <vector>

#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

/// Of the time, a twentieth at most goes into looking.
constexpr int PAUSE_FACTOR = 20;
/// Beside a message, and between it and the label.
constexpr int MESSAGE_MARGIN = 40;

} // namespace

SoTreeStatus::SoTreeStatus(SoVantleTreeView* tree, QStatusBar* bar) : QLabel(bar), m_tree(tree), m_bar(bar) {
  setObjectName(QStringLiteral("m_treeStatus"));
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  m_timer.setSingleShot(true);
  connect(&m_timer, &QTimer::timeout, this, &SoTreeStatus::followTree);
  QAbstractItemModel const* const model = tree->model();
  connect(model, &QAbstractItemModel::rowsInserted, this, &SoTreeStatus::changeLater);
  connect(model, &QAbstractItemModel::rowsRemoved, this, &SoTreeStatus::changeLater);
  connect(model, &QAbstractItemModel::modelReset, this, &SoTreeStatus::changeLater);
  connect(tree, &QTreeWidget::currentItemChanged, this, &SoTreeStatus::changeLater);
  // Without a signal of their own: rows that were left unbuilt are opened or built after all.
  connect(tree, &QTreeWidget::itemExpanded, this, &SoTreeStatus::changeLater);
  connect(bar, &QStatusBar::messageChanged, this, &SoTreeStatus::makeRoom);
  changeLater();
}

/// Never at once: this may be in the middle of a change of the graph.
void SoTreeStatus::changeLater() {
  if (m_timer.isActive()) return;
  qint64 const passed = m_sinceLast.isValid() ? m_sinceLast.elapsed() : m_pause;
  m_timer.start(static_cast<int>(std::clamp<qint64>(m_pause - passed, 0, m_pause)));
}

void SoTreeStatus::followTree() {
  QElapsedTimer time;
  time.start();
  bool const isSlow = m_tree && m_tree->isAnyUnbuilt();
  // A build may let events in; what stands there by then is no tree yet.
  if (!m_tree || !m_tree->isLoading()) {
    QString const text = m_tree ? describeTree() : QString();
    if (text != this->text()) {
      setText(text);
      setToolTip(text.isEmpty() ? text
                                : text + QLatin1Char('\n') +
                                      tr("A place is a row of the tree. A node that is used several times "
                                         "has several places."));
    }
  }
  m_pause = std::max(isSlow ? SLOW_INTERVAL : INTERVAL, static_cast<int>(time.elapsed()) * PAUSE_FACTOR);
  m_sinceLast.start();
  if (m_tree && m_tree->isLoading()) changeLater();
}

QString SoTreeStatus::grouped(double number) {
  QLocale locale = QLocale::c();
  locale.setNumberOptions(QLocale::DefaultNumberOptions); // that one leaves the groups out
  return std::isinf(number) ? tr("infinitely many") : locale.toString(number, 'f', 0);
}

static QString nodesAndPlaces(double nodes, double places) {
  QString const nodeText = nodes == 1 ? SoTreeStatus::tr("1 node") : SoTreeStatus::tr("%1 nodes");
  QString const placeText = places == 1 ? SoTreeStatus::tr("1 place") : SoTreeStatus::tr("%1 places");
  return (nodes == 1 ? nodeText : nodeText.arg(SoTreeStatus::grouped(nodes))) + QStringLiteral(", ") +
         (places == 1 ? placeText : placeText.arg(SoTreeStatus::grouped(places)));
}

QString SoTreeStatus::describeTree() const {
  if (m_tree->topLevelItemCount() == 0) return tr("No scene");
  SoReferencedNodeManager const* const references = m_tree->getReferencedNodeManager();
  QString text = nodesAndPlaces(references->nodeCount(), references->rowCount());
  if (SoTreeViewItem* const current = m_tree->currentItem())
    text += tr("; selected %1").arg(describeBelow(current));
  if (m_tree->isAnyUnbuilt()) text += tr(", %1 places not built").arg(grouped(m_tree->placesNotBuilt()));
  return text;
}

QString SoTreeStatus::describeBelow(SoTreeViewItem* top) const {
  SoReferencedNodeManager const* const references = m_tree->getReferencedNodeManager();
  if (!top->parent() && m_tree->topLevelItemCount() == 1)
    return nodesAndPlaces(references->nodeCount(), references->rowCount());
  std::vector<SoTreeViewItem*> rows{top};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    int const count = rows[i]->childCount();
    if (rows.size() + count > MAX_PLACES) return tr("over %1 places").arg(grouped(MAX_PLACES));
    for (int k = 0; k < count; ++k) rows.push_back(rows[i]->rawChild(k));
  }
  std::vector<SoNode*> nodes;
  nodes.reserve(rows.size());
  for (SoTreeViewItem const* row : rows) nodes.push_back(row->getNode());
  std::sort(nodes.begin(), nodes.end());
  auto const different = std::unique(nodes.begin(), nodes.end()) - nodes.begin();
  return nodesAndPlaces(static_cast<double>(different), static_cast<double>(rows.size()));
}

void SoTreeStatus::makeRoom(QString const& message) {
  int const left = m_bar->width() - m_bar->fontMetrics().horizontalAdvance(message) - MESSAGE_MARGIN;
  bool const isNarrow = !message.isEmpty() && left < sizeHint().width();
  setMaximumWidth(isNarrow ? std::max(left, 0) : QWIDGETSIZE_MAX);
}

void SoTreeStatus::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QString const shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
  style()->drawItemText(&painter, rect(), Qt::AlignRight | Qt::AlignVCenter, palette(), isEnabled(), shown,
                        foregroundRole());
}
