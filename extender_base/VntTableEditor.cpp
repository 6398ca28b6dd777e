#include "extender_base/VntTableEditor.h"

#include <QAction>
#include <QColorDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "extender_base/VntTableChart.h"
#include "extender_base/VntTableDelegate.h"
#include "extender_base/VntTableModel.h"
#include "extender_base/VntTableRow.h"
#include "extender_base/VntTableScan.h"
#include "kestrava/fields/SoMField.h"
#include "vnt/VntFieldEdit.h"

namespace {

constexpr int NARROWEST_COLUMN = 56;
constexpr int LONGEST_NOTE = 80; // characters

// Whether charts, and editors of the current value, are shown: a person who does not want them wants none for
// the next field either.
bool showsCharts = true;
bool showsRows = true;

/// A text of one line, cut to the room there is.
class Summary : public QLabel {
 public:
  using QLabel::QLabel;
  QSize minimumSizeHint() const override {
    return {fontMetrics().averageCharWidth() * 10, sizeHint().height()};
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, width()), foregroundRole());
  }
};

} // namespace

VntTableEditor::VntTableEditor(VntFieldEdit* edit, QWidget* parent)
    : VntEditorWidget(edit, parent),
      m_edits(edit),
      m_model(new VntTableModel(m_edits, this)),
      m_delegate(new VntTableDelegate(m_edits, this)),
      m_scan(new VntTableScan(m_edits, this)),
      m_view(new QTableView(this)),
      m_expression(new QLineEdit(this)),
      m_apply(new QPushButton(tr("Apply"), this)),
      m_summary(new Summary(this)) {
  auto* const bar = new QToolBar(this);
  content()->addWidget(bar);
  if (m_edits.getAccess().getNumNumbers() > 0) {
    m_chart = new VntTableChart(m_edits, *m_scan, this);
    m_chart->setObjectName("chart");
    connect(m_chart, &VntTableChart::rowClicked, this, [this](int row) {
      goTo(row);
      m_view->setFocus(Qt::MouseFocusReason); // to go on from there by keys
    });
    content()->addWidget(m_chart, 25);
  }
  content()->addWidget(m_view, 100);
  m_row = VntTableRow::create(edit, m_edits, this);
  buildView();
  buildActions();
  buildMenus(bar);
  buildBelow();
  if (m_row) content()->addWidget(m_row);
  content()->addStretch(1); // for what a table of few rows leaves
  connect(m_delegate, &VntTableDelegate::told, this, &VntTableEditor::showProblem);
  connect(m_delegate, &VntTableDelegate::openChanged, this, &VntTableEditor::setTyping);
  connect(m_delegate, &VntTableDelegate::entered, this, [this](QModelIndex const& index) {
    QModelIndex const below = m_model->index(index.row() + 1, index.column());
    setCurrent(below.isValid() ? below : index);
  });
  connect(m_scan, &VntTableScan::finished, this, &VntTableEditor::showSummary);
  connect(edit, &VntFieldEdit::changed, this, &VntTableEditor::follow);
  if (m_model->rowCount() > 0) setCurrent(m_model->index(0, 0));
  setFocusProxy(m_view);
  showParts();
}

VntTableEditor::~VntTableEditor() {
  // A cell that is open uses the edits until it goes.
  m_delegate->disconnect(this);
  delete m_row;
  delete m_view;
  delete m_chart;
  delete m_scan;
}

void VntTableEditor::buildView() {
  m_view->setObjectName("table");
  m_view->setModel(m_model);
  m_view->setItemDelegate(m_delegate);
  m_view->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
  m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
  m_view->setTabKeyNavigation(false);
  m_view->setWordWrap(false);
  m_view->setContextMenuPolicy(Qt::CustomContextMenu);
  m_view->installEventFilter(this);
  QHeaderView* const rows = m_view->verticalHeader();
  rows->setSectionResizeMode(QHeaderView::Fixed);
  rows->setDefaultSectionSize(fontMetrics().height() + 6);
  rows->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
  QHeaderView* const columns = m_view->horizontalHeader();
  columns->setMinimumSectionSize(NARROWEST_COLUMN);
  columns->setSectionResizeMode(QHeaderView::Stretch);
  for (int i = 0; i < m_model->columnCount(); ++i) {
    if (m_model->column(i).kind != VntTableColumn::COLOR) continue;
    columns->setSectionResizeMode(i, QHeaderView::Fixed);
    columns->resizeSection(i, fontMetrics().horizontalAdvance(QStringLiteral("#dddddd")) + 32);
  }
  connect(m_view, &QAbstractItemView::doubleClicked, this, &VntTableEditor::editCell);
  connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](QModelIndex const& index) {
            if (m_chart) m_chart->setCurrentRow(index.row());
            if (m_row) m_row->setRow(index.row());
          });
}

QAction* VntTableEditor::addAction(char const* name, QString const& text, QString const& tip,
                                   std::function<void()> const& run, QKeySequence const& key) {
  auto* const action = new QAction(text, this);
  action->setObjectName(QLatin1String(name));
  QString const keyText = key.toString(QKeySequence::NativeText);
  action->setToolTip(keyText.isEmpty() ? tip : tr("%1 (%2)", "tool tip and key").arg(tip, keyText));
  // The key is the table's alone: eventFilter() takes it before the shortcuts of the window.
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetShortcut);
  connect(action, &QAction::triggered, this, run);
  m_actions << action;
  return action;
}

void VntTableEditor::buildActions() {
  addAction(
      "insertAbove", tr("Insert"), tr("New values above the selected rows, as many as they are"),
      [this] { insert(false, 0); }, Qt::Key_Insert);
  addAction(
      "insertBelow", tr("Insert Below"), tr("New values below the selected rows, as many as they are"),
      [this] { insert(true, 0); }, Qt::SHIFT | Qt::Key_Insert);
  addAction("insertSeveral", tr("Insert Several..."),
            tr("As many new values as you say, above the selected row"), [this] { insertSeveral(); });
  addAction(
      "duplicate", tr("Duplicate"), tr("A copy of the selected rows behind them"),
      [this] { showProblem(m_edits.duplicate(selectedRows())); }, Qt::CTRL | Qt::Key_D);
  addAction(
      "delete", tr("Delete"), tr("Deletes the selected rows"), [this] { remove(); }, Qt::Key_Delete);
  QAction* const up = addAction(
      "moveUp", tr("Move Up"), tr("Moves the selected rows up"), [this] { move(true); },
      Qt::ALT | Qt::Key_Up);
  QAction* const down = addAction(
      "moveDown", tr("Move Down"), tr("Moves the selected rows down"), [this] { move(false); },
      Qt::ALT | Qt::Key_Down);
  up->setIcon(style()->standardIcon(QStyle::SP_ArrowUp));
  down->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
  addAction(
      "cut", tr("Cut Rows"), tr("Copies the selected rows and deletes them"),
      [this] {
        copy(true);
        remove();
      },
      QKeySequence::Cut);
  addAction(
      "copy", tr("Copy"), tr("Copies the selected cells, as spreadsheets take them"), [this] { copy(false); },
      QKeySequence::Copy);
  addAction(
      "paste", tr("Paste"),
      tr("Pastes cells of a spreadsheet or a list of numbers from the current cell on; more rows than there "
         "are "
         "become new values"),
      [this] { paste(); }, QKeySequence::Paste);
  addAction("sortAscending", tr("Sort Ascending"),
            tr("Sorts the selected rows, or all, by the current column"), [this] { sort(true); });
  addAction("sortDescending", tr("Sort Descending"),
            tr("Sorts the selected rows, or all, by the current column"), [this] { sort(false); });
  addAction("reverse", tr("Reverse"), tr("Turns the order of the selected rows, or of all, round"),
            [this] { showProblem(m_edits.reverse(selectedRowsOrAll())); });
  addAction("fillDown", tr("Fill Down"), tr("Copies the first selected row into the other selected cells"),
            [this] { showProblem(m_edits.fillDown(selectedCells())); });
  addAction("ramp", tr("Fill Evenly"), tr("Runs evenly from the first to the last selected number"),
            [this] { showProblem(m_edits.ramp(selectedCells())); });
}

void VntTableEditor::buildMenus(QToolBar* bar) {
  auto const action = [this](char const* name) { return findChild<QAction*>(QLatin1String(name)); };
  auto const fill = [&](QMenu* menu, std::initializer_list<char const*> names) {
    for (char const* name : names) {
      if (*name)
        menu->addAction(action(name));
      else
        menu->addSeparator();
    }
    return menu;
  };
  auto const addMenu = [&](QString const& text, char const* name, std::initializer_list<char const*> names) {
    auto* const button = new QToolButton(bar);
    button->setObjectName(QLatin1String(name));
    button->setText(text);
    button->setMenu(fill(new QMenu(button), names));
    button->setPopupMode(QToolButton::InstantPopup);
    bar->addWidget(button);
    return button;
  };
  bar->setIconSize(QSize(16, 16));
  QToolButton* const insert = addMenu(action("insertAbove")->text(), "insertMenu",
                                      {"insertAbove", "insertBelow", "insertSeveral", "duplicate"});
  insert->setPopupMode(QToolButton::MenuButtonPopup);
  insert->setDefaultAction(action("insertAbove"));
  bar->addAction(action("delete"));
  bar->addAction(action("moveUp"));
  bar->addAction(action("moveDown"));
  addMenu(tr("Sort"), "sortMenu", {"sortAscending", "sortDescending", "reverse"});
  addMenu(tr("Fill"), "fillMenu",
          m_chart ? std::initializer_list<char const*>{"fillDown", "ramp"}
                  : std::initializer_list<char const*>{"fillDown"});
  if (m_chart)
    bar->addAction(addSwitch("showChart", tr("Chart"), tr("Shows all values at once, where there is room"),
                             &showsCharts));
  if (m_row)
    bar->addAction(addSwitch("showRow", tr("Value"),
                             tr("Shows an editor of the current value, where there is room"), &showsRows));
  QMenu* const menu =
      fill(new QMenu(this), {"cut", "copy", "paste", "", "insertAbove", "insertBelow", "insertSeveral",
                             "duplicate", "delete", "", "moveUp", "moveDown", "", "sortAscending",
                             "sortDescending", "reverse", "", "fillDown", "ramp"});
  menu->setObjectName("tableMenu");
  action("ramp")->setVisible(m_chart);
  connect(m_view, &QWidget::customContextMenuRequested, this,
          [this, menu](QPoint at) { menu->popup(m_view->viewport()->mapToGlobal(at)); });
}

QAction* VntTableEditor::addSwitch(char const* name, QString const& text, QString const& tip, bool* shows) {
  auto* const action = new QAction(text, this);
  action->setObjectName(QLatin1String(name));
  action->setToolTip(tip);
  action->setCheckable(true);
  action->setChecked(*shows);
  connect(action, &QAction::toggled, this, [this, shows](bool on) {
    *shows = on;
    showParts();
  });
  return action;
}

void VntTableEditor::showParts() {
  int const rows = m_model->rowCount(), line = m_view->verticalHeader()->defaultSectionSize();
  int const oneRow = m_view->horizontalHeader()->sizeHint().height() + line + 2 * m_view->frameWidth();
  m_view->setMinimumHeight(oneRow);
  m_view->setMaximumHeight(rows == 1 ? oneRow + line : QWIDGETSIZE_MAX); // with a scroll bar
  m_summary->setVisible(rows != 1);
  // The parts have no least height, so that this room does not depend on which of them are shown now.
  constexpr int SPACING = 8;
  int room = height() - minimumSizeHint().height() - SPACING;
  if (m_row) {
    // A little less room, as a status bar takes, does not fold it again.
    int const margin = rows == 1 || m_row->isVisibleTo(this) ? 0 : line;
    bool const isShown = showsRows && m_row->sizeHint().height() + margin <= room;
    if (isShown) room -= m_row->sizeHint().height();
    m_row->setVisible(isShown);
  }
  int const leastForChart = m_chart ? m_chart->sizeHint().height() / 2 + 2 * line : 0;
  if (m_chart) m_chart->setVisible(showsCharts && rows > 1 && room >= leastForChart);
}

void VntTableEditor::resizeEvent(QResizeEvent* event) {
  VntEditorWidget::resizeEvent(event);
  showParts();
}

void VntTableEditor::giveUp() {
  if (m_row) m_row->giveUp();
  VntEditorWidget::giveUp();
}

void VntTableEditor::setReadOnly(bool on) {
  if (on == !m_expression->isEnabledTo(this)) return;
  giveUp();
  for (QAction* action : m_actions) action->setEnabled(!on || action->objectName() == QLatin1String("copy"));
  m_view->setEditTriggers(on ? QAbstractItemView::NoEditTriggers
                             : QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
  m_expression->setEnabled(!on);
  m_apply->setEnabled(!on);
  if (m_row) m_row->setEnabled(!on);
}

void VntTableEditor::buildBelow() {
  m_apply->setObjectName("apply");
  m_apply->setAutoDefault(false);
  m_expression->setObjectName("applyExpression");
  if (m_chart) {
    m_expression->setPlaceholderText(tr("For the selected cells: 2, v*1.5, i/10"));
    m_expression->setToolTip(
        tr("A number or an expression for all selected cells; v is the old value, i the index of the row"));
  } else {
    m_expression->setPlaceholderText(tr("For the selected cells"));
    m_expression->setToolTip(tr("A text for all selected cells"));
  }
  m_apply->setToolTip(m_expression->toolTip());
  auto* const row = new QHBoxLayout;
  row->addWidget(m_expression, 1);
  row->addWidget(m_apply);
  content()->addLayout(row);
  connect(m_apply, &QPushButton::clicked, this, &VntTableEditor::apply);
  connect(m_expression, &QLineEdit::returnPressed, this, &VntTableEditor::apply);
  m_summary->setObjectName("summary");
  m_summary->setTextFormat(Qt::PlainText);
  content()->addWidget(m_summary);
}

void VntTableEditor::follow() {
  m_isBehind = !isVisible();
  if (m_isBehind || !edit()->getField()) return;
  bool const wasEmpty = m_model->rowCount() == 0;
  m_model->refresh();
  if (wasEmpty && m_model->rowCount() > 0 && !m_view->currentIndex().isValid())
    setCurrent(m_model->index(0, 0));
  m_scan->follow();
  if (m_row) m_row->follow();
  showParts();
}

void VntTableEditor::showEvent(QShowEvent* event) {
  if (m_isBehind) follow();
  VntEditorWidget::showEvent(event);
}

QString VntTableEditor::valueText() const {
  return m_delegate->isValueNew() ? m_delegate->cellText().left(LONGEST_NOTE) : QString();
}

void VntTableEditor::escape() {
  m_delegate->drop();
  m_edits.cancel();
  VntEditorWidget::escape();
}

void VntTableEditor::showProblem(QString const& problem) { edit()->report(problem); }

void VntTableEditor::showSummary() {
  VntTableScan::Result const& result = m_scan->getResult();
  QLocale const grouped(QLocale::English);
  QStringList parts = {result.count == 1 ? tr("1 value")
                                         : tr("%1 values").arg(grouped.toString(result.count))};
  auto const& columns = m_edits.getAccess().getColumns();
  constexpr int MOST = 4;
  VntTableScan::Range all = {std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity()};
  for (std::size_t i = 0; i < result.columns.size(); ++i) {
    VntTableScan::Range const& range = result.columns[i];
    all.add(range);
    if (range.isEmpty() || result.columns.size() == 1 || result.columns.size() > MOST) continue;
    parts << tr("%1 %2 to %3", "name of a column, its least and greatest number")
                 .arg(columns[i].name, QString::number(range.low, 'g', 6),
                      QString::number(range.high, 'g', 6));
  }
  if (parts.size() == 1 && !all.isEmpty())
    parts << tr("%1 to %2").arg(QString::number(all.low, 'g', 6), QString::number(all.high, 'g', 6));
  if (result.numNotFinite > 0) parts << tr("%1 not finite").arg(grouped.toString(result.numNotFinite));
  m_summary->setText(parts.join(QStringLiteral(", ")));
  m_summary->setToolTip(m_summary->text());
}
