#include "extender_base/VntEditorWidget.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <utility>

#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

VntEditorWidget::VntEditorWidget(VntFieldEdit* edit, QWidget* parent)
    : QWidget(parent), m_edit(edit), m_content(new QVBoxLayout), m_note(new QLabel(this)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(m_content);
  layout->addWidget(m_note);
  m_note->setObjectName("changedNote");
  m_note->setWordWrap(true);
  m_note->setTextFormat(Qt::PlainText);
  QFont font = m_note->font();
  font.setItalic(true);
  m_note->setFont(font);
  m_note->hide();
  // The value of a field that follows another one is there to be read.
  QPalette colors = palette();
  QColor text = colors.color(QPalette::Active, QPalette::Text);
  text.setAlphaF(0.7f);
  colors.setColor(QPalette::Disabled, QPalette::Text, text);
  setPalette(colors);
  connect(edit, &VntFieldEdit::changed, this, &VntEditorWidget::valueChanged);
}

void VntEditorWidget::valueChanged() {
  m_isBehind = !isVisible();
  if (!m_isBehind) refresh();
}

void VntEditorWidget::showEvent(QShowEvent* event) {
  if (std::exchange(m_isBehind, false)) refresh();
  QWidget::showEvent(event);
}

void VntEditorWidget::giveUp() {
  if (m_edit->getField() && (m_typing || m_edit->isPreviewing())) escape();
}

void VntEditorWidget::refresh() {
  if (!m_edit->getField()) return;
  if (m_typing) {
    QString const value = valueText();
    m_note->setText(tr("changed to %1").arg(value));
    m_note->setVisible(!value.isNull());
  } else {
    m_note->hide();
    showValue();
  }
}

QString VntEditorWidget::valueText() const {
  constexpr int LONGEST = 80;
  SbString text;
  m_edit->getField()->get(text);
  QString line = toQString(text).simplified();
  if (line.size() > LONGEST) line = line.left(LONGEST - 3) + QLatin1String("...");
  return line;
}

void VntEditorWidget::setTyping(bool on) {
  if (m_typing == on) return;
  m_typing = on;
  if (!on) refresh();
}

void VntEditorWidget::watchTyping(QLineEdit* line) {
  connect(line, &QLineEdit::textEdited, this, [this] { setTyping(true); });
}

void VntEditorWidget::escape() {
  m_edit->cancel();
  m_edit->report({});
  setTyping(false);
  refresh();
}

bool VntEditorWidget::event(QEvent* event) {
  // Before a shortcut of the window or the host takes the key.
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
      (m_typing || m_edit->isPreviewing())) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

void VntEditorWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && (m_typing || m_edit->isPreviewing())) {
    escape();
  } else {
    QWidget::keyPressEvent(event);
  }
}
