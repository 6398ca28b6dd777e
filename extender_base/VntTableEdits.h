#pragma once

#include <QCoreApplication>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "extender_base/VntTableValues.h"

class VntFieldEdit;
class VntTableCommand;

/// Cells of rows that lie together: the columns are bits.
struct VntTableCells {
  int start;
  int count;
  std::uint32_t columns;
};

/// What a person does to a table of values; each is one step of the history, holding no more than what it
/// changes. An operation answers what is wrong, and has then changed nothing, or an empty text.
///
/// Rows and cells are given in order and do not overlap; those that are not there are left out.
class VntTableEdits {
  Q_DECLARE_TR_FUNCTIONS(VntTableEdits)
 public:
  explicit VntTableEdits(VntFieldEdit* edit);
  ~VntTableEdits();

  SoMField* getField() const;
  VntTableAccess const& getAccess() const { return m_access; }

  // One cell.
  QString setNumber(int row, int column, double number);
  QString setText(int row, int column, QString const& text);
  /// A change that goes on until finish() or cancel().
  QString preview(int row, int column, double number);
  QString previewText(int row, int column, QString const& text);
  /// The whole value, from a field of one such value.
  QString previewValue(int row, SoField const& value);
  void finish();
  void cancel();
  bool isPreviewing() const { return m_trial != nullptr; }

  // Rows.
  /// Makes room for `count` new values before a row; behind the last one it is the number of rows.
  QString insert(int row, int count);
  QString remove(std::vector<VntTableCells> const& rows);
  /// Puts a copy of each group of rows behind it.
  QString duplicate(std::vector<VntTableCells> const& rows);
  /// Moves rows past one other; those at the end stay.
  QString move(std::vector<VntTableCells> const& rows, bool up);
  /// Among the places that the rows have. Equal ones keep their order, numbers that are none come last.
  QString sort(std::vector<VntTableCells> const& rows, int column, bool ascending);
  QString reverse(std::vector<VntTableCells> const& rows);

  // Many cells at once.
  /// An expression of `v`, the old value, and `i`, the index. Integers are rounded. Cells of text get the
  /// text.
  QString apply(std::vector<VntTableCells> const& cells, QString const& expression);
  /// Copies the first of the rows into the others.
  QString fillDown(std::vector<VntTableCells> const& cells);
  /// Evenly from the first to the last of the rows.
  QString ramp(std::vector<VntTableCells> const& cells);
  /// Texts from a row and column on, row by row, each a number, an expression or what the column takes. The
  /// field grows when there are more than it has. Values are complete only with all columns: missing ones
  /// stay as they are.
  QString paste(int row, int column, std::vector<std::vector<QString>> const& texts);

  /// `row 4, z: ...`, as errors are told.
  QString atCell(int row, int column, QString const& problem) const;

 private:
  using Change = std::function<QString(VntTableList& list, int index, int row, std::uint32_t columns)>;
  /// Why nothing can be changed now; empty: it can.
  QString refusal() const;
  std::vector<VntTableCells> clip(std::vector<VntTableCells> const& rows) const;
  QString where() const;
  static QString counted(int count);
  QString change(std::vector<VntTableCells> const& cells, QString const& what, Change const& change);
  QString exchange(std::vector<VntTableRun> runs, std::unique_ptr<VntTableList> values, QString const& what);
  QString permute(std::vector<int> const& rows, std::vector<int> const& order, QString const& what);
  QString setNumberIn(VntTableList& list, int index, int column, double number) const;
  QString setNumbersIn(VntTableList& list, int index, int row, double const* numbers) const;
  QString setTextIn(VntTableList& list, int index, int row, int column, QString const& text) const;
  QString pasteRow(VntTableList& list, int index, int column, std::vector<QString> const& texts);
  QString tryCell(int row, Change const& change);

  VntFieldEdit* m_edit;
  VntTableAccess const& m_access;

  struct Trial;
  std::unique_ptr<Trial> m_trial;
};
