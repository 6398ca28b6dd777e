// What the user does with a table: selections become rows and cells, actions become edits.

#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>
#include <algorithm>
#include <array>

#include "extender_base/VntTableDelegate.h"
#include "extender_base/VntTableEditor.h"
#include "extender_base/VntTableModel.h"
#include "extender_base/VntTableText.h"
#include "kestrava/fields/SoMField.h"
#include "vnt/VntFieldEdit.h"

namespace {

/// Puts cells together whose rows meet and whose columns are the same.
void append(std::vector<VntTableCells>& cells, VntTableCells const& part) {
  if (part.count <= 0 || part.columns == 0) return;
  if (!cells.empty() && cells.back().start + cells.back().count == part.start &&
      cells.back().columns == part.columns)
    cells.back().count += part.count;
  else
    cells.push_back(part);
}

class WaitCursor {
 public:
  WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QApplication::restoreOverrideCursor(); }
  WaitCursor(WaitCursor const&) = delete;
  WaitCursor& operator=(WaitCursor const&) = delete;
};

} // namespace

std::vector<VntTableCells> VntTableEditor::selectedCells() const {
  struct Edge {
    int row, change, left, right;
  };
  std::vector<Edge> edges;
  for (QItemSelectionRange const& range : m_view->selectionModel()->selection()) {
    edges.push_back({range.top(), 1, range.left(), range.right()});
    edges.push_back({range.bottom() + 1, -1, range.left(), range.right()});
  }
  std::sort(edges.begin(), edges.end(), [](Edge const& a, Edge const& b) { return a.row < b.row; });
  std::vector<VntTableCells> cells;
  std::array<int, 32> depth{};
  int last = 0;
  for (Edge const& edge : edges) {
    std::uint32_t columns = 0;
    for (std::size_t i = 0; i < depth.size(); ++i) columns |= (depth[i] > 0 ? 1u : 0u) << i;
    append(cells, {last, edge.row - last, columns});
    last = edge.row;
    for (int i = edge.left; i <= edge.right; ++i) depth[i] += edge.change;
  }
  QModelIndex const current = m_view->currentIndex();
  if (cells.empty() && current.isValid()) cells.push_back({current.row(), 1, 1u << current.column()});
  return cells;
}

std::vector<VntTableCells> VntTableEditor::selectedRows() const {
  std::vector<VntTableCells> rows;
  std::uint32_t const all = (1u << m_model->columnCount()) - 1;
  for (VntTableCells const& part : selectedCells()) append(rows, {part.start, part.count, all});
  return rows;
}

std::vector<VntTableCells> VntTableEditor::selectedRowsOrAll() const {
  std::vector<VntTableCells> rows = selectedRows();
  if (rows.size() == 1 && rows[0].count == 1) rows.clear();
  if (rows.empty()) rows.push_back({0, m_model->rowCount(), 1});
  return rows;
}

void VntTableEditor::setCurrent(QModelIndex const& index) {
  // Not the view's own operation, to which a key that is held down, as Ctrl+X is, would mean something.
  m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  m_view->scrollTo(index);
}

void VntTableEditor::selectRows(std::vector<VntTableCells> const& rows) {
  QItemSelection selection;
  for (VntTableCells const& part : rows) {
    int const last = std::min(part.start + part.count, m_model->rowCount()) - 1;
    if (part.start <= last)
      selection.select(m_model->index(part.start, 0), m_model->index(last, m_model->columnCount() - 1));
  }
  m_view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void VntTableEditor::goTo(int row) {
  QModelIndex const old = m_view->currentIndex();
  QModelIndex const index = m_model->index(row, old.isValid() ? old.column() : 0);
  if (!index.isValid()) return;
  setCurrent(index);
  m_view->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void VntTableEditor::editCell(QModelIndex const& index) {
  if (!edit()->isEditable()) return;
  if (m_model->column(index.column()).kind == VntTableColumn::COLOR)
    chooseColor(index);
  else
    m_view->edit(index);
}

void VntTableEditor::chooseColor(QModelIndex const& index) {
  auto* const dialog = new QColorDialog(QColor(index.data(Qt::EditRole).toString()), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  int const row = index.row(), column = index.column();
  dialog->setWindowTitle(tr("Colour %1").arg(row));
  connect(dialog, &QColorDialog::currentColorChanged, this,
          [=, this](QColor const& color) { showProblem(m_edits.previewText(row, column, color.name())); });
  connect(dialog, &QDialog::accepted, this, [this] { m_edits.finish(); });
  connect(dialog, &QDialog::rejected, this, [this] { m_edits.cancel(); });
  dialog->open();
}

void VntTableEditor::insert(bool below, int count) {
  std::vector<VntTableCells> const rows = selectedRows();
  int row = m_model->rowCount();
  if (!rows.empty()) row = below ? rows.back().start + rows.back().count : rows.front().start;
  if (count == 0) {
    count = 1;
    if (!rows.empty()) count = std::max(1, rows.back().start + rows.back().count - rows.front().start);
  }
  QString const problem = m_edits.insert(row, count);
  showProblem(problem);
  if (!problem.isEmpty()) return;
  QModelIndex const first = m_model->index(row, 0);
  m_view->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
  selectRows({{row, count, 1}});
  m_view->scrollTo(first);
}

void VntTableEditor::insertSeveral() {
  constexpr int MOST = 10'000'000;
  auto* const dialog = new QInputDialog(this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(tr("Insert Values"));
  dialog->setLabelText(tr("Number of new values:"));
  dialog->setInputMode(QInputDialog::IntInput);
  dialog->setIntRange(1, MOST);
  dialog->setIntValue(10);
  connect(dialog, &QInputDialog::intValueSelected, this, [this](int count) { insert(false, count); });
  dialog->open();
}

void VntTableEditor::remove() {
  std::vector<VntTableCells> const rows = selectedRows();
  int const column = std::max(0, m_view->currentIndex().column());
  QString const problem = m_edits.remove(rows);
  showProblem(problem);
  if (!problem.isEmpty() || rows.empty() || m_model->rowCount() == 0) return;
  // What comes after them moves up to where they were.
  setCurrent(m_model->index(std::min(rows.front().start, m_model->rowCount() - 1), column));
}

void VntTableEditor::move(bool up) {
  std::vector<VntTableCells> rows = selectedRows();
  QModelIndex const current = m_view->currentIndex();
  showProblem(m_edits.move(rows, up));
  for (VntTableCells& part : rows) {
    bool const stays = up ? part.start == 0 : part.start + part.count >= m_model->rowCount();
    if (stays) continue;
    bool const hasCurrent = current.row() >= part.start && current.row() < part.start + part.count;
    part.start += up ? -1 : 1;
    if (!hasCurrent) continue;
    m_view->selectionModel()->setCurrentIndex(current.siblingAtRow(current.row() + (up ? -1 : 1)),
                                              QItemSelectionModel::NoUpdate);
  }
  selectRows(rows);
}

void VntTableEditor::sort(bool ascending) {
  WaitCursor const wait;
  showProblem(m_edits.sort(selectedRowsOrAll(), std::max(0, m_view->currentIndex().column()), ascending));
}

void VntTableEditor::copy(bool wholeRows) {
  SoMField const* const field = m_edits.getField();
  if (!field) return;
  WaitCursor const wait;
  std::vector<VntTableCells> const cells = wholeRows ? selectedRows() : selectedCells();
  std::uint32_t columns = 0;
  for (VntTableCells const& part : cells) columns |= part.columns;
  QString text;
  for (VntTableCells const& part : cells) {
    int const end = std::min(part.start + part.count, field->getNum());
    for (int row = part.start; row < end; ++row) {
      bool isFirst = true;
      for (int column = 0; column < m_model->columnCount(); ++column) {
        if (!(columns >> column & 1)) continue;
        if (!std::exchange(isFirst, false)) text += u'\t';
        if (part.columns >> column & 1) vntWriteCell(text, m_edits.getAccess().getText(*field, row, column));
      }
      text += u'\n';
    }
  }
  if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void VntTableEditor::paste() {
  WaitCursor const wait;
  bool const areNumbers = m_edits.getAccess().getNumNumbers() > 0;
  std::vector<std::vector<QString>> const texts =
      vntReadSheet(QGuiApplication::clipboard()->text(), areNumbers);
  std::vector<VntTableCells> const cells = selectedCells();
  bool const isOne = texts.size() == 1 && texts[0].size() == 1;
  bool const areMany =
      cells.size() > 1 || (!cells.empty() && (cells[0].count > 1 || std::popcount(cells[0].columns) > 1));
  if (isOne && areMany) return showProblem(m_edits.apply(cells, texts[0][0]));
  int const row = cells.empty() ? 0 : cells.front().start;
  int const column = cells.empty() ? 0 : std::countr_zero(cells.front().columns);
  QString const problem = m_edits.paste(row, column, texts);
  showProblem(problem);
  if (problem.isEmpty()) selectRows({{row, static_cast<int>(texts.size()), 1}});
}

void VntTableEditor::apply() {
  if (m_expression->text().trimmed().isEmpty() && m_edits.getAccess().getNumNumbers() > 0)
    return showProblem(tr("A number or an expression is missing."));
  WaitCursor const wait;
  showProblem(m_edits.apply(selectedCells(), m_expression->text()));
}

bool VntTableEditor::eventFilter(QObject* watched, QEvent* event) {
  bool const isKey = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
  if (watched != m_view || !isKey) return VntEditorWidget::eventFilter(watched, event);
  auto* const key = static_cast<QKeyEvent*>(event);
  bool const isPress = event->type() == QEvent::KeyPress;
  if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && isPress &&
      m_view->currentIndex().isValid() && edit()->isEditable()) {
    m_view->edit(m_view->currentIndex());
    return true;
  }
  auto const isIts = [&](QAction const* action) {
    return !action->shortcut().isEmpty() &&
           action->shortcut() == QKeySequence(key->keyCombination().toCombined() & ~Qt::KeypadModifier);
  };
  auto const found = std::find_if(m_actions.begin(), m_actions.end(), isIts);
  if (found == m_actions.end()) {
    // Plain keys begin an edit, whatever the window uses them for.
    bool const isPlain = !(key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    if (!isPress && isPlain && (!key->text().isEmpty() || key->key() == Qt::Key_F2) &&
        key->key() != Qt::Key_Escape)
      event->accept();
    return VntEditorWidget::eventFilter(watched, event);
  }
  event->accept();
  if (isPress) (*found)->trigger();
  return true;
}
