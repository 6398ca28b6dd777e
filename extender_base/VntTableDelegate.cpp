#include "extender_base/VntTableDelegate.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <utility>

#include "extender_base/VntNumberEdit.h"
#include "extender_base/VntTableEdits.h"
#include "extender_base/VntTableModel.h"
#include "kestrava/fields/SoMField.h"

VntTableDelegate::VntTableDelegate(VntTableEdits& edits, QObject* parent)
    : QStyledItemDelegate(parent), m_edits(edits) {}

QString VntTableDelegate::cellText() const {
  SoMField const* const field = m_edits.getField();
  bool const isThere = field && m_cell.isValid() && m_cell.row() < field->getNum();
  return isThere ? m_edits.getAccess().getText(*field, m_cell.row(), m_cell.column()) : QString();
}

bool VntTableDelegate::isTyping() const {
  if (auto const* number = qobject_cast<VntNumberEdit*>(m_line)) return number->isTyping();
  auto const* const text = qobject_cast<QLineEdit*>(m_line);
  return text && text->isModified();
}

bool VntTableDelegate::isValueNew() const { return isTyping() && cellText() != m_before; }

void VntTableDelegate::tell(QString const& problem) const {
  m_hasProblem = !problem.isEmpty();
  Q_EMIT told(problem);
}

QWidget* VntTableDelegate::createEditor(QWidget* parent, QStyleOptionViewItem const&,
                                        QModelIndex const& index) const {
  VntTableColumn const& column = m_edits.getAccess().getColumns()[index.column()];
  m_cell = index;
  m_before = cellText();
  QLineEdit* line;
  if (column.isNumber()) {
    auto* const number = new VntNumberEdit(static_cast<VntNumberEdit::Kind>(column.kind), parent);
    if (column.kind == VntTableColumn::INTEGER) number->setRange(column.lowest, column.highest);
    connect(number, &VntNumberEdit::valueEntered, this,
            [this](double value) { tell(m_edits.setNumber(m_cell.row(), m_cell.column(), value)); });
    connect(number, &VntNumberEdit::valuePreviewed, this,
            [this](double value) { tell(m_edits.preview(m_cell.row(), m_cell.column(), value)); });
    connect(number, &VntNumberEdit::dragFinished, this, [this] { m_edits.finish(); });
    connect(number, &VntNumberEdit::dragCancelled, this, [this] { m_edits.cancel(); });
    connect(number, &VntNumberEdit::rejected, this, [this](QString const& reason) {
      tell(reason.isEmpty() ? reason : m_edits.atCell(m_cell.row(), m_cell.column(), reason));
    });
    line = number;
  } else {
    line = new QLineEdit(parent);
  }
  line->setObjectName("cellEditor");
  connect(line, &QObject::destroyed, this, [this] {
    if (!m_line) Q_EMIT openChanged(false);
  });
  m_line = line;
  Q_EMIT openChanged(true);
  return line;
}

void VntTableDelegate::setEditorData(QWidget* editor, QModelIndex const& index) const {
  QString const text = index.data(Qt::EditRole).toString();
  if (auto* number = qobject_cast<VntNumberEdit*>(editor)) {
    number->setValue(text.toDouble());
    if (!number->isTyping()) m_before = text;
  } else if (auto* line = qobject_cast<QLineEdit*>(editor); line && !line->isModified()) {
    line->setText(text);
    m_before = text;
  }
}

void VntTableDelegate::updateEditorGeometry(QWidget* editor, QStyleOptionViewItem const& option,
                                            QModelIndex const&) const {
  // A narrow cell still shows what is typed into it.
  QRect place = option.rect;
  QWidget const* const viewport = editor->parentWidget();
  int const width =
      std::min(std::max(place.width(), editor->minimumSizeHint().width() * 3 / 2), viewport->width());
  place.setLeft(std::max(0, std::min(place.left(), viewport->width() - width)));
  place.setWidth(width);
  editor->setGeometry(place);
}

bool VntTableDelegate::commit() {
  QPointer<VntTableDelegate> const self(this);
  m_hasProblem = false;
  if (auto* number = qobject_cast<VntNumberEdit*>(m_line)) {
    if (!number->isTyping() && !number->isDragging()) return true;
    m_isEntering = true;
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(number, &enter);
    if (!self) return false;
    m_isEntering = false;
    return m_line && !static_cast<VntNumberEdit*>(m_line.data())->isTyping() && !m_hasProblem;
  }
  auto* const line = qobject_cast<QLineEdit*>(m_line);
  if (!line || !line->isModified()) return true;
  line->setModified(false);
  tell(m_edits.setText(m_cell.row(), m_cell.column(), line->text()));
  if (!self || !m_line) return false;
  line->setModified(m_hasProblem);
  return !m_hasProblem;
}

bool VntTableDelegate::keyPressed(QWidget* line, int key) {
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab: {
      QPersistentModelIndex const cell = m_cell;
      if (!commit()) return true;
      bool const goesDown = key == Qt::Key_Return || key == Qt::Key_Enter;
      close(goesDown ? NoHint : key == Qt::Key_Tab ? EditNextItem : EditPreviousItem);
      if (goesDown) Q_EMIT entered(cell);
      return true;
    }
    case Qt::Key_Escape:
      if (auto* number = qobject_cast<VntNumberEdit*>(line); number && number->isDragging()) return false;
      drop();
      return true;
    default:
      return false;
  }
}

void VntTableDelegate::drop() {
  QPointer<QWidget> const line = m_line;
  if (auto* number = qobject_cast<VntNumberEdit*>(line)) number->revert();
  if (auto* text = qobject_cast<QLineEdit*>(line)) text->setModified(false);
  tell({});
  close(RevertModelCache);
}

void VntTableDelegate::close(EndEditHint hint) {
  QPointer<QWidget> const line = std::exchange(m_line, nullptr);
  if (!line) return;
  // Closing it may open the next one.
  Q_EMIT openChanged(false);
  Q_EMIT closeEditor(line, hint);
}

bool VntTableDelegate::eventFilter(QObject* object, QEvent* event) {
  auto* const line = qobject_cast<QWidget*>(object);
  if (!line || line != m_line || m_isEntering) return false;
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    event->accept();
    return true;
  }
  if (event->type() == QEvent::KeyPress) return keyPressed(line, static_cast<QKeyEvent*>(event)->key());
  if (event->type() == QEvent::FocusOut) {
    Qt::FocusReason const reason = static_cast<QFocusEvent*>(event)->reason();
    bool const comesBack = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
                           reason == Qt::MenuBarFocusReason;
    // What is wrong stays open, until it is put right or dropped by Escape.
    if (!comesBack && commit() && m_line) {
      QMetaObject::invokeMethod(
          line,
          [this, line] {
            if (line == m_line) close(NoHint);
          },
          Qt::QueuedConnection);
    }
  }
  return false;
}
