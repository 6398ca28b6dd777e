#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPointer>
#include <QProgressDialog>
#include <limits>
#include <unordered_map>
#include <vector>

#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleMessageBox.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// Rows whose children are not built: because there would be too many rows, or because the user did not want
// to wait. Such a row has an expander and builds its children when it is opened.

namespace {

constexpr int PATIENCE = 400; // milliseconds until a dialog shows how far the build is
constexpr int PORTION = 50;   // milliseconds between two looks at what the user does
constexpr int PROGRESS_STEPS = 1000;

} // namespace

void SoVantleTreeView::setUnbuilt(SoTreeViewItem* row, bool on) {
  if (row->m_unbuilt == on) return;
  row->m_unbuilt = on;
  if (on) {
    m_unbuilt.insert(row);
  } else {
    m_unbuilt.erase(row);
  }
  row->setChildIndicatorPolicy(on ? QTreeWidgetItem::ShowIndicator
                                  : QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

/// Builds below rows that have no children yet, the last one first, and what those bring about. False: the
/// time is up, and rows are left.
bool SoVantleTreeView::buildWaiting(std::vector<SoTreeViewItem*>& waiting, QDeadlineTimer time,
                                    SoTreeViewItem const* above) {
  std::vector<ChildNode> children;
  for (unsigned count = 1; !waiting.empty(); ++count) {
    // Asking for the time costs as much as a row.
    if (count % 64 == 0 && time.hasExpired()) return false;
    SoTreeViewItem* const row = waiting.back();
    waiting.pop_back();
    children.clear();
    childrenOf(row->m_node, children);
    bool const full = m_references->rowCount() + static_cast<qint64>(children.size()) > m_rowLimit;
    setUnbuilt(row, false);
    if (full && !children.empty()) setUnbuilt(row, true);
    if (children.empty() || full) continue;
    SoTreeViewItem const* const parent = row->parent();
    addChildRows(row, children, parent ? parent : above);
    for (int i = row->childCount(); i-- > 0;) {
      SoTreeViewItem* const child = row->rawChild(i);
      if (row->m_ignored) child->setDisabled(true);
      waiting.push_back(child);
    }
    restoreIgnoredRows(row, above);
  }
  return true;
}

void SoVantleTreeView::buildChildren(SoTreeViewItem* row) {
  if (!row->m_unbuilt) return;
  std::vector<ChildNode> children;
  childrenOf(row->m_node, children);
  setUnbuilt(row, false);
  addChildRows(row, children, row->parent());
  restoreIgnoredRows(row, nullptr);
  for (int i = 0, n = row->childCount(); i < n; ++i) {
    SoTreeViewItem* const child = row->rawChild(i);
    children.clear();
    childrenOf(child->m_node, children);
    if (child->childCount() == 0) setUnbuilt(child, !children.empty());
    if (row->m_ignored) child->setDisabled(true);
    markFiltered(child);
  }
}

void SoVantleTreeView::buildOpened(QModelIndex const& index) {
  if (SoTreeViewItem* const row = SoTreeViewItem::cast(itemFromIndex(index))) buildChildren(row);
}

/// Builds the rows of a scene, with a dialog when it takes long. What the dialog lets happen meanwhile may
/// change the graph: rows that wait are marked as not built, so that a change passes them over.
void SoVantleTreeView::buildWithProgress(SoNode* root) {
  auto* const top = new SoTreeViewItem(root, nullptr, nullptr, 0, nullptr);
  m_references->addItem(top);
  std::vector<SoTreeViewItem*> waiting{top};
  bool const done = buildWaiting(waiting, QDeadlineTimer(m_patience));
  insertTopLevelItem(0, top);
  markFiltered(top);
  if (done) return;
  if (VantleMessageBox::isUnattended()) {
    buildWaiting(waiting, QDeadlineTimer::Forever);
    markFiltered(top);
    return;
  }

  QPointer<SoVantleTreeView> const self(this);
  SoVantleImpl::Call const call;
  m_showsProgress = false;
  std::unordered_map<SoNode const*, double> known;
  double const all = std::min<double>(countPlaces(root, known), m_rowLimit);
  // The frame may go before the dialog does, which is then told.
  QPointer<QProgressDialog> const dialog = new QProgressDialog(window());
  dialog->setWindowTitle(tr("Vantle"));
  dialog->setCancelButtonText(tr("&Stop Here"));
  dialog->setWindowModality(Qt::ApplicationModal);
  dialog->setAutoReset(false);
  dialog->setMinimumDuration(0);
  dialog->setRange(0, PROGRESS_STEPS);
  bool finished = false;
  while (!finished) {
    for (SoTreeViewItem* row : waiting) {
      if (!row->m_unbuilt) row->m_unbuilt = m_unbuilt.insert(row).second;
    }
    int const built = m_references->rowCount();
    dialog->setLabelText(
        tr("Building the tree: %L1 of %L2 rows.\nStopped, the other rows are built when they are opened.")
            .arg(built)
            .arg(all, 0, 'f', 0));
    dialog->setValue(static_cast<int>(std::min(1.0, built / all) * PROGRESS_STEPS));
    QCoreApplication::processEvents();
    if (!self) return;
    std::erase_if(waiting, [this](SoTreeViewItem* row) { return !m_unbuilt.contains(row); });
    if (!dialog || dialog->wasCanceled()) break;
    finished = buildWaiting(waiting, QDeadlineTimer(PORTION));
  }
  for (SoTreeViewItem* row : waiting) {
    // Marked above, without the expander.
    row->m_unbuilt = false;
    std::vector<ChildNode> children;
    childrenOf(row->m_node, children);
    if (children.empty()) {
      m_unbuilt.erase(row);
    } else {
      setUnbuilt(row, true);
    }
  }
  delete dialog;
  if (SoTreeViewItem* const row = firstChild()) markFiltered(row);
}

/// Rows that a node and all below it have, a shared node once for each of its places. Infinite for a graph
/// that contains itself.
double SoVantleTreeView::countPlaces(SoNode* node, std::unordered_map<SoNode const*, double>& known) {
  struct Step {
    SoNode* node;
    std::vector<ChildNode> children;
    std::size_t next;
    double count;
  };
  constexpr double BUSY = -1;
  std::vector<Step> steps;
  double result = 0;
  auto const enter = [&](SoNode* below) {
    auto const [found, isNew] = known.try_emplace(below, BUSY);
    if (!isNew) {
      result = found->second == BUSY ? std::numeric_limits<double>::infinity() : found->second;
      return;
    }
    steps.push_back({below, {}, 0, 1});
    childrenOf(below, steps.back().children);
    result = 0;
  };
  enter(node);
  while (!steps.empty()) {
    Step& step = steps.back();
    step.count += std::exchange(result, 0);
    if (step.next < step.children.size()) {
      enter(step.children[step.next++].node);
      continue;
    }
    result = known[step.node] = step.count;
    steps.pop_back();
  }
  return result;
}

double SoVantleTreeView::placesNotBuilt() const {
  std::unordered_map<SoNode const*, double> known;
  double count = 0;
  for (SoTreeViewItem const* row : m_unbuilt) count += countPlaces(row->m_node, known) - 1;
  return count;
}

void SoVantleTreeView::setRowLimit(int rows) { m_rowLimit = std::max(rows, 1); }
