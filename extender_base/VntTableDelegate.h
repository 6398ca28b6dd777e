#pragma once

#include <QPersistentModelIndex>
#include <QPointer>
#include <QStyledItemDelegate>

class VntTableEdits;

/// Edits the cells of a table: a line for a number or a text, which stays open until what is typed has been
/// taken or dropped.
class VntTableDelegate : public QStyledItemDelegate {
  Q_OBJECT
 public:
  VntTableDelegate(VntTableEdits& edits, QObject* parent);

  /// True when the user types into a cell whose value was another one when he began.
  bool isValueNew() const;
  /// The present value of the cell that is open.
  QString cellText() const;
  /// Closes the cell that is open and drops what is typed there.
  void drop();

  QWidget* createEditor(QWidget* parent, QStyleOptionViewItem const& option,
                        QModelIndex const& index) const override;
  void setEditorData(QWidget* editor, QModelIndex const& index) const override;
  /// The edits have done it.
  void setModelData(QWidget*, QAbstractItemModel*, QModelIndex const&) const override {}
  void updateEditorGeometry(QWidget* editor, QStyleOptionViewItem const& option,
                            QModelIndex const& index) const override;

 Q_SIGNALS:
  /// What is wrong with a cell; empty: nothing is any more.
  void told(QString const& problem) const;
  /// The user has pressed Enter and the cell has its value.
  void entered(QModelIndex const& index);
  /// A cell has been opened, or no one is open any more.
  void openChanged(bool on) const;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  bool isTyping() const;
  bool keyPressed(QWidget* line, int key);
  /// True when nothing is left to be taken.
  bool commit();
  void close(EndEditHint hint);
  void tell(QString const& problem) const;

  VntTableEdits& m_edits;
  // One cell is open at a time; the view asks for its line with a const operation.
  mutable QPointer<QWidget> m_line;
  mutable QPersistentModelIndex m_cell;
  mutable QString m_before; // text of the cell when typing began
  mutable bool m_hasProblem = false;
  bool m_isEntering = false;
};
