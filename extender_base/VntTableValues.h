#pragma once

#include <QString>
#include <limits>
#include <memory>
#include <vector>

class SoField;
class SoMField;

/// One column of a table of values.
struct VntTableColumn {
  enum Kind { INTEGER, SINGLE, DOUBLE, TEXT, COLOR };
  QString name;
  Kind kind = TEXT;
  double lowest = std::numeric_limits<double>::lowest(); ///< of integers
  double highest = std::numeric_limits<double>::max();
  bool isNumber() const { return kind < TEXT; }
};

/// Values of a field, side by side, that make room for others.
struct VntTableRun {
  int start; ///< in the field
  int count; ///< of the field's values that go
  int held;  ///< of the values that come
};

/// Any number of values of the type that a multiple field has, apart from it: what a command holds, and what
/// is made ready before a field gets it.
class VntTableList {
 public:
  virtual ~VntTableList() = default;
  virtual int size() const = 0;
  /// Appends copies of values of a field of the type; they must be there.
  virtual void append(SoMField const& field, int start, int count) = 0;
  /// Appends values as they are in a new field.
  virtual void appendDefaults(int count) = 0;

  /// The numbers of a value, as many as there are columns of numbers.
  virtual void getNumbers(int index, double* numbers) const = 0;
  /// Makes a value of as many numbers. The problem that there is with them, and then the value stays; or
  /// nothing. When it is that of one number `wrong` gets its column.
  virtual QString setNumbers(int index, double const* numbers, int* wrong = nullptr) = 0;
  /// Sets a column of text. `field` knows the symbols of enumerations; it stays as it is.
  virtual QString setText(int index, QString const& text, SoMField& field) = 0;
  /// Sets a value to that of a field of one such value; for columns of numbers only.
  virtual void setValue(int, SoField const&) {}

  /// True when a value is that of a row of the field.
  virtual bool isSame(int index, SoMField const& field, int row) const = 0;

  /// Gives the field these values in exchange for those of the runs, which are in order and apart from each
  /// other; without notification. Doing it again with the same runs, which are then those of the way back,
  /// takes it back. What the program has removed meanwhile stays removed.
  virtual void exchange(SoMField& field, std::vector<VntTableRun>& runs) = 0;
};

/// How a table reads the values of a multiple field, straight from where they are.
class VntTableAccess {
 public:
  /// For the field's type, or the nearest one it is derived from. Lives for ever.
  static VntTableAccess const& of(SoMField const& field);
  virtual ~VntTableAccess() = default;

  /// Columns of numbers come first.
  std::vector<VntTableColumn> const& getColumns() const { return m_columns; }
  int getNumColumns() const { return static_cast<int>(m_columns.size()); }
  int getNumNumbers() const { return m_numNumbers; }

  /// The numbers of `count` values from an index on, value by value.
  virtual void getNumbers(SoMField const& field, int start, int count, double* numbers) const = 0;
  /// The text of a cell, by which its value can be entered again.
  virtual QString getText(SoMField const& field, int row, int column) const = 0;
  virtual std::unique_ptr<VntTableList> makeList(SoMField const& field) const = 0;
  /// Orders the values from `start` on so that the one at order[i] comes to i, or `back` the other way,
  /// without notification.
  virtual void reorder(SoMField& field, int start, std::vector<int> const& order, bool back) const = 0;

 protected:
  std::vector<VntTableColumn> m_columns;
  int m_numNumbers = 0;
};

/// The shortest text that gives the same number again.
QString vntNumberText(double number, VntTableColumn::Kind kind);
