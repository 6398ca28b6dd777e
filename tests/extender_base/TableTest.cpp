#include "tests/extender_base/TableTest.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>

#include "kestrava/nodes/SoGroup.h"
#include "vantle/frame/SoVantleMainFrame.h"

void TableTest::editOwn(char const* type, char const* value) {
  SoRef<SoNode> const scene =
      read(std::string("Separator { Own { fields [ ") + type + " own ] own " + value + " } }");
  ASSERT_TRUE(scene.get());
  edit(static_cast<SoGroup*>(scene.get())->getChild(0), "own");
}

QString TableTest::cell(int row, int column) const {
  return table()->model()->index(row, column).data().toString();
}

void TableTest::select(int row, int column, int lastRow, int lastColumn) {
  QAbstractItemModel const* const model = table()->model();
  QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                    table()->visualRect(model->index(row, column)).center());
  QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::ShiftModifier,
                    table()->visualRect(model->index(lastRow, lastColumn)).center());
}

void TableTest::goTo(int row, int column) const {
  table()->selectionModel()->setCurrentIndex(table()->model()->index(row, column),
                                             QItemSelectionModel::ClearAndSelect);
}

QLineEdit* TableTest::openLine() const { return table()->viewport()->findChild<QLineEdit*>("cellEditor"); }

void TableTest::typeCell(int row, int column, char const* text, bool enter) {
  table()->setFocus();
  goTo(row, column);
  QTest::keyClick(table(), Qt::Key_F2);
  ASSERT_TRUE(waitFor([this] { return openLine() && openLine()->hasFocus(); }));
  type(openLine(), text, false);
  if (enter) QTest::keyClick(openLine(), Qt::Key_Return);
}

void TableTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  table()->setFocus();
  QTest::keyClick(table(), key, modifiers);
}

void TableTest::setClipboard(char const* text) {
  QApplication::clipboard()->setText(QString::fromUtf8(text));
}
std::string TableTest::clipboard() { return QApplication::clipboard()->text().toStdString(); }

QString TableTest::step() const { return frame()->m_undoAction->toolTip(); }
