#pragma once

#include <functional>

#include "extender_base/VntEditorWidget.h"
#include "extender_base/VntTableEdits.h"

class QAction;
class QLineEdit;
class QPushButton;
class QModelIndex;
class QTableView;
class QToolBar;
class VntTableChart;
class VntTableDelegate;
class VntTableModel;
class VntTableRow;
class VntTableScan;

/// Editor for a field of any number of values: a table of them, with a chart when they are numbers. Rows are
/// inserted, deleted, moved and sorted, ranges of cells changed at once, and exchanged with spreadsheets.
class VntTableEditor : public VntEditorWidget {
  Q_OBJECT
 public:
  VntTableEditor(VntFieldEdit* edit, QWidget* parent);
  ~VntTableEditor() override;

  void giveUp() override;
  void setReadOnly(bool on) override;

 protected:
  /// The table follows the field also while a cell is open.
  void showValue() override {}
  QString valueText() const override;
  void escape() override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildView();
  void buildActions();
  void buildMenus(QToolBar* bar);
  QAction* addAction(char const* name, QString const& text, QString const& tip,
                     std::function<void()> const& run, QKeySequence const& key = {});
  void buildBelow();
  QAction* addSwitch(char const* name, QString const& text, QString const& tip, bool* shows);
  /// The parts for which there are values, room and the user's wish.
  void showParts();

  void follow();
  void showSummary();
  void showProblem(QString const& problem);

  /// The selected cells, in order; the current one where none is selected.
  std::vector<VntTableCells> selectedCells() const;
  /// Their rows, with all columns.
  std::vector<VntTableCells> selectedRows() const;
  /// Those, or all when there is only one.
  std::vector<VntTableCells> selectedRowsOrAll() const;
  void setCurrent(QModelIndex const& index);
  void selectRows(std::vector<VntTableCells> const& rows);
  void goTo(int row);
  void editCell(QModelIndex const& index);
  void chooseColor(QModelIndex const& index);

  void insert(bool below, int count);
  void insertSeveral();
  void remove();
  void move(bool up);
  void sort(bool ascending);
  void copy(bool wholeRows);
  void paste();
  void apply();

  VntTableEdits m_edits;
  VntTableModel* m_model;
  VntTableDelegate* m_delegate;
  VntTableScan* m_scan;
  VntTableChart* m_chart = nullptr; // for numbers
  VntTableRow* m_row = nullptr;     // for types that have one
  QTableView* m_view;
  QList<QAction*> m_actions;
  QLineEdit* m_expression;
  QPushButton* m_apply;
  QLabel* m_summary;
  bool m_isBehind = true; // not shown yet, or the field has changed while it was hidden
};
