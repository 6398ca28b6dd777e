#include "extender_base/VntNumberEdit.h"

#include <QKeyEvent>
#include <QWheelEvent>
#include <charconv>
#include <cmath>
#include <limits>

VntNumberEdit::VntNumberEdit(Kind kind, QWidget* parent)
    : QLineEdit(parent),
      m_kind(kind),
      m_lowest(std::numeric_limits<double>::lowest()),
      m_highest(std::numeric_limits<double>::max()) {
  connect(this, &QLineEdit::textEdited, this, [this] { setTyping(true); });
  connect(this, &QLineEdit::returnPressed, this, &VntNumberEdit::enter);
  showNumber();
}

void VntNumberEdit::setRange(double lowest, double highest) {
  m_lowest = lowest;
  m_highest = highest;
}

void VntNumberEdit::setStep(double step) { m_step = step; }

void VntNumberEdit::setValue(double value) {
  m_value = value;
  if (!m_typing) showNumber();
}

void VntNumberEdit::revert() {
  setTyping(false);
  showNumber();
}

void VntNumberEdit::setTyping(bool on) {
  if (std::exchange(m_typing, on) != on) Q_EMIT typingChanged(on);
}

void VntNumberEdit::showNumber() {
  char digits[64];
  auto const end =
      m_kind == INTEGER  ? std::to_chars(digits, digits + sizeof digits, std::llround(m_value)).ptr
      : m_kind == SINGLE ? std::to_chars(digits, digits + sizeof digits, static_cast<float>(m_value)).ptr
                         : std::to_chars(digits, digits + sizeof digits, m_value).ptr;
  setText(QString::fromLatin1(digits, end - digits));
}

void VntNumberEdit::enter() {
  if (!m_typing) return;
  bool isNumber = false;
  double const value = text().toDouble(&isNumber);
  if (!isNumber) return Q_EMIT rejected(tr("\"%1\" is no number.").arg(text()));
  m_value = value;
  setTyping(false);
  showNumber();
  Q_EMIT rejected({});
  Q_EMIT valueEntered(m_value);
}

void VntNumberEdit::step(double steps, Qt::KeyboardModifiers) {
  m_value += steps * (m_step != 0 ? m_step : 1);
  setTyping(false);
  showNumber();
  Q_EMIT valueEntered(m_value);
}

void VntNumberEdit::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
    step(event->key() == Qt::Key_Up ? 1 : -1, event->modifiers());
  else
    QLineEdit::keyPressEvent(event);
}

void VntNumberEdit::wheelEvent(QWheelEvent* event) {
  if (!hasFocus()) return event->ignore();
  step(event->angleDelta().y() / 120.0, event->modifiers());
}

void VntNumberEdit::focusOutEvent(QFocusEvent* event) {
  enter();
  QLineEdit::focusOutEvent(event);
}
