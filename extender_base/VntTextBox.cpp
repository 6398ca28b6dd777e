#include "extender_base/VntTextBox.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextDocument>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

/// A line of more than this is slow, and nobody can read it.
constexpr qsizetype LONGEST_LINE = 1 << 13;
constexpr qsizetype LONGEST = 1 << 16;
constexpr qsizetype SHOWN_OF_CUT = 1 << 12;

/// Contents itself with three lines where there is no room for more.
class Lines : public QPlainTextEdit {
 public:
  using QPlainTextEdit::QPlainTextEdit;
  QSize sizeHint() const override {
    return {QPlainTextEdit::sizeHint().width(), fontMetrics().lineSpacing() * 3 + 12};
  }
  QSize minimumSizeHint() const override { return {80, sizeHint().height()}; }

 protected:
  // The base class looks at the first format of an empty clipboard, which has none.
  void insertFromMimeData(QMimeData const* data) override {
    if (!data->formats().isEmpty()) QPlainTextEdit::insertFromMimeData(data);
  }
};

bool isLineEnd(QChar c) {
  return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar::LineSeparator ||
         c == QChar::ParagraphSeparator;
}

bool needsLines(QString const& text) {
  return text.size() > LONGEST_LINE || std::any_of(text.begin(), text.end(), isLineEnd);
}

} // namespace

VntTextBox::VntTextBox(bool allowsLines, QWidget* parent)
    : QWidget(parent),
      m_allowsLines(allowsLines),
      m_line(new QLineEdit(this)),
      m_lines(new Lines(this)),
      m_toggle(new QToolButton(this)),
      m_hint(new QLabel(this)) {
  m_line->setObjectName("line");
  m_line->setMaxLength(1 << 24); // a line cuts off what is longer
  m_lines->setObjectName("lines");
  m_lines->setTabChangesFocus(true);
  m_hint->setObjectName("textHint");
  m_hint->setWordWrap(true);
  m_toggle->setObjectName("severalLines");
  m_toggle->setText(QStringLiteral("¶"));
  m_toggle->setCheckable(true);
  m_toggle->setToolTip(tr("Several lines"));
  m_toggle->setAccessibleName(tr("Several lines"));
  m_toggle->setVisible(allowsLines);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const row = new QHBoxLayout;
  row->addWidget(m_line, 1, Qt::AlignTop);
  row->addWidget(m_lines, 1);
  row->addWidget(m_toggle, 0, Qt::AlignTop);
  layout->addLayout(row, 1);
  layout->addWidget(m_hint);
  for (QWidget* widget : {static_cast<QWidget*>(m_line), static_cast<QWidget*>(m_lines)})
    widget->installEventFilter(this);
  connect(m_line, &QLineEdit::textEdited, this, &VntTextBox::changed);
  connect(m_lines, &QPlainTextEdit::textChanged, this, &VntTextBox::changed);
  connect(m_toggle, &QToolButton::toggled, this, &VntTextBox::toggleLines);
  showLines(false);
}

bool VntTextBox::isModified() const {
  return m_hasLines ? m_lines->document()->isModified() : m_line->isModified();
}

QString VntTextBox::text() const {
  if (!m_hasLines) return m_line->text();
  QString text = m_lines->document()->toRawText(); // toPlainText() makes plain spaces of the others
  for (QChar& c : text) {
    if (isLineEnd(c)) c = QLatin1Char('\n');
  }
  return text;
}

void VntTextBox::setText(QString const& text) {
  QSignalBlocker const blocker(m_lines);
  m_isCut = text.size() > LONGEST;
  m_length = text.size();
  bool const forced = m_isCut || needsLines(text);
  if (forced) showLines(true);
  m_toggle->setEnabled(!forced);
  m_lines->setReadOnly(m_isCut);
  if (m_hasLines) {
    if (isModified() || m_isCut || text != this->text())
      m_lines->setPlainText(m_isCut ? text.left(SHOWN_OF_CUT) + QStringLiteral(" ...") : text);
    m_lines->document()->setModified(false);
  } else {
    int const cursor = m_line->cursorPosition();
    m_line->setText(text);
    m_line->setCursorPosition(m_line->hasFocus() ? cursor : 0);
    m_line->setModified(false);
  }
  updateHint();
}

void VntTextBox::showLines(bool on) {
  m_hasLines = on;
  m_line->setVisible(!on);
  m_lines->setVisible(on);
  setSizePolicy(QSizePolicy::Expanding, on ? QSizePolicy::Expanding : QSizePolicy::Fixed);
  setFocusProxy(on ? static_cast<QWidget*>(m_lines) : m_line);
  QSignalBlocker const blocker(m_toggle);
  m_toggle->setChecked(on);
  updateHint();
}

void VntTextBox::toggleLines(bool on) {
  bool const wasModified = isModified();
  bool const hadFocus = m_line->hasFocus() || m_lines->hasFocus();
  QString const carried = text();
  QSignalBlocker const blocker(m_lines);
  QSignalBlocker const quiet(this); // the focus moves, but nobody leaves
  showLines(on);
  if (on) {
    m_lines->setPlainText(carried);
    m_lines->document()->setModified(wasModified);
    m_lines->moveCursor(QTextCursor::End);
  } else {
    m_line->setText(carried);
    m_line->setModified(wasModified);
  }
  if (hadFocus) focusProxy()->setFocus();
}

void VntTextBox::changed() {
  bool const isForced = needsLines(text());
  if (isForced && m_allowsLines && !m_hasLines) toggleLines(true); // several lines were pasted
  m_toggle->setEnabled(!isForced);
  Q_EMIT edited();
}

void VntTextBox::updateHint() {
  m_hint->setVisible(m_hasLines);
  m_hint->setText(m_isCut ? tr("The beginning of %1 characters, which are too many to be edited here")
                                .arg(locale().toString(m_length))
                          : tr("Ctrl+Enter enters the text"));
}

bool VntTextBox::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    auto const* const key = static_cast<QKeyEvent*>(event);
    if (!isModified() && (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo))) {
      event->ignore(); // without any typing to undo they mean the last edit
      return true;
    }
    if (isModified() && key->key() == Qt::Key_Escape) {
      event->accept();
      return true;
    }
  } else if (event->type() == QEvent::KeyPress) {
    auto const* const key = static_cast<QKeyEvent*>(event);
    bool const isEnter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (isEnter && (!m_hasLines || (key->modifiers() & Qt::ControlModifier))) {
      if (isModified()) Q_EMIT entered();
      return true;
    }
  } else if (event->type() == QEvent::FocusOut) {
    Qt::FocusReason const reason = static_cast<QFocusEvent*>(event)->reason();
    bool const comesBack = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
                           reason == Qt::MenuBarFocusReason;
    if (!comesBack && isModified()) Q_EMIT entered();
  }
  return QWidget::eventFilter(watched, event);
}
