#pragma once

#include <QAction>
#include <QTableView>

#include "tests/extender_base/EditorTest.h"

class SoMField;

/// A table of values, used by keys, mouse and clipboard.
class TableTest : public EditorTest {
 public:
  /// A field of a type, by name, of a node of its own: "own".
  void editOwn(char const* type, char const* value);
  QTableView* table() const { return find<QTableView>("table"); }
  /// What a cell shows.
  QString cell(int row, int column) const;
  void select(int row, int column, int lastRow, int lastColumn);
  /// Makes one cell the current one, and the only one that is selected.
  void goTo(int row, int column) const;
  void selectRow(int row) const { table()->selectRow(row); }
  /// Opens a cell by typing into it; the text replaces its value.
  void typeCell(int row, int column, char const* text, bool enter = true);
  /// The line that is open in a cell; null when none is.
  QLineEdit* openLine() const;
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
  void trigger(char const* action) const { find<QAction>(action)->trigger(); }
  static void setClipboard(char const* text);
  static std::string clipboard();
  /// The name of the step that would be undone.
  QString step() const;
};
