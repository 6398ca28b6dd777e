#include "extender_base/VntNumberEdit.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStyleOption>
#include <QWheelEvent>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "extender_base/VntExpression.h"

namespace {

constexpr int PAUSE_MS = 600;                        // between two steps that are still one edit
constexpr int NOTCH = 120;                           // of a mouse wheel
constexpr double LARGEST_EXACT = 9007199254740992.0; // 2^53

/// Two small arrows to take hold of.
class Handle : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    if (!underMouse()) option.state &= ~QStyle::State_MouseOver;
    painter.setOpacity(underMouse() ? 1.0 : 0.6);
    int const half = width() / 2;
    option.rect = QRect(0, 0, half, height());
    style()->drawPrimitive(QStyle::PE_IndicatorArrowLeft, &option, &painter, this);
    option.rect = QRect(half, 0, width() - half, height());
    style()->drawPrimitive(QStyle::PE_IndicatorArrowRight, &option, &painter, this);
  }
  void enterEvent(QEnterEvent*) override { update(); }
  void leaveEvent(QEvent*) override { update(); }
};

double factorOf(Qt::KeyboardModifiers modifiers) {
  double factor = 1;
  if (modifiers & Qt::ShiftModifier) factor *= 10;
  if (modifiers & Qt::ControlModifier) factor /= 10;
  return factor;
}

} // namespace

VntNumberEdit::VntNumberEdit(Kind kind, QWidget* parent)
    : QLineEdit(parent),
      m_kind(kind),
      m_lowest(kind == SINGLE ? std::numeric_limits<float>::lowest() : std::numeric_limits<double>::lowest()),
      m_highest(-m_lowest),
      m_degree(std::numbers::pi / 180),
      m_handle(new Handle(this)) {
  m_handle->setObjectName("dragHandle");
  m_handle->setCursor(Qt::SizeHorCursor);
  m_handle->setToolTip(tr("Drag sideways to change the number; Shift: faster, Ctrl: finer, Escape: back"));
  m_handle->installEventFilter(this);
  setToolTip(tr(
      "A number or an expression such as 1/3, pi/2 or 2*sqrt(2).\nWheel, Up, Down, PageUp and PageDown step; "
      "Shift: ten times as much, Ctrl: a tenth."));
  m_pause.setSingleShot(true);
  m_pause.setInterval(PAUSE_MS);
  connect(&m_pause, &QTimer::timeout, this, [this] {
    if (m_motion == STEPPING) endMotion(true);
  });
  connect(this, &QLineEdit::textEdited, this, [this] {
    endMotion(true);
    if (std::exchange(m_isWrong, false)) update();
    setTyping(true);
  });
  showNumber();
}

void VntNumberEdit::setRange(double lowest, double highest) {
  m_lowest = lowest;
  m_highest = highest;
  m_hasRange = true;
}

void VntNumberEdit::setStep(double step) { m_step = step; }

void VntNumberEdit::setDegrees(bool on) { m_degree = on ? 1 : std::numbers::pi / 180; }

void VntNumberEdit::setDragLabel(QLabel* label) {
  if (m_dragLabel) {
    m_dragLabel->removeEventFilter(this);
    m_dragLabel->unsetCursor();
  }
  m_dragLabel = label;
  if (!label) return;
  label->setCursor(Qt::SizeHorCursor);
  label->installEventFilter(this);
}

void VntNumberEdit::setHandleShown(bool on) {
  m_handleShown = on;
  placeHandle();
}

void VntNumberEdit::setValue(double value) {
  if (value == m_value && std::signbit(value) == std::signbit(m_value)) return;
  m_value = value;
  if (!m_typing) showNumber();
}

void VntNumberEdit::revert() {
  bool const wasWrong = std::exchange(m_isWrong, false);
  update();
  showNumber();
  setTyping(false);
  if (wasWrong) Q_EMIT rejected({});
}

void VntNumberEdit::setTyping(bool on) {
  if (std::exchange(m_typing, on) != on) Q_EMIT typingChanged(on);
}

QString VntNumberEdit::digits(double value) const {
  char text[400];
  char* const end = text + sizeof text;
  char* last;
  if (m_kind == INTEGER && std::abs(value) <= LARGEST_EXACT)
    last = std::to_chars(text, end, std::llround(value)).ptr;
  else if (m_kind == SINGLE)
    last = std::to_chars(text, end, static_cast<float>(value)).ptr;
  else
    last = std::to_chars(text, end, value).ptr;
  return QString::fromLatin1(text, last - text);
}

void VntNumberEdit::showNumber() {
  QString const number = std::isnan(m_value) ? QStringLiteral("nan") : digits(m_value);
  if (number == text()) return;
  setText(number);
  if (!hasFocus()) setCursorPosition(0); // a long number begins with what matters
}

void VntNumberEdit::reject(QString const& reason) {
  m_isWrong = true;
  update();
  Q_EMIT rejected(reason);
}

QString VntNumberEdit::refusal(double value, bool isFinite) const {
  if (!isFinite && (m_kind == INTEGER || m_hasRange))
    return tr("\"%1\" does not fit here.").arg(text().trimmed());
  if (!isFinite) return {};
  if (m_kind == INTEGER && value != std::round(value))
    return tr("Only whole numbers fit here; this is %1.").arg(value, 0, 'g', 6);
  if (value >= m_lowest && value <= m_highest) return {};
  if (!m_hasRange) return tr("%1 is too large for a number of single precision.").arg(value, 0, 'g', 6);
  QString const number =
      m_kind == INTEGER && std::abs(value) > LARGEST_EXACT ? QString::number(value, 'g', 6) : digits(value);
  if (m_highest >= std::numeric_limits<float>::max())
    return tr("%1 is out of range: it must be at least %2.").arg(number, digits(m_lowest));
  if (m_lowest <= std::numeric_limits<float>::lowest())
    return tr("%1 is out of range: it must be at most %2.").arg(number, digits(m_highest));
  return tr("%1 is out of range: %2 to %3.").arg(number, digits(m_lowest), digits(m_highest));
}

void VntNumberEdit::enter() {
  endMotion(true);
  if (!m_typing) return;
  VntExpression::Result result = VntExpression::evaluate(text(), m_degree);
  if (!result) return reject(result.problem);
  bool const isFinite = std::isfinite(result.value);
  if (m_kind == INTEGER && isFinite) {
    // 0.1*30 is meant to be 3.
    double const whole = std::round(result.value);
    if (std::abs(result.value - whole) <= std::abs(whole) * 1e-14) result.value = whole;
  }
  QString const reason = refusal(result.value, isFinite);
  if (!reason.isEmpty()) return reject(reason);
  m_value = m_kind == SINGLE ? static_cast<float>(result.value) : result.value;
  m_isWrong = m_typing = false;
  update();
  showNumber();
  QPointer<VntNumberEdit> const self(this); // an edit may make the editor go
  Q_EMIT rejected({});
  // First the new value, then the end of typing: whoever then shows the value again has the new one.
  if (self) Q_EMIT valueEntered(m_value);
  if (self) Q_EMIT typingChanged(false);
}

double VntNumberEdit::stepSize() const {
  if (m_step != 0) return m_step;
  double const size = std::abs(m_value);
  double step =
      size == 0 || !std::isfinite(size) ? 0.1 : std::pow(10, std::floor(std::log10(size) + 1e-9) - 1);
  if (m_kind == INTEGER) step = 1;
  double const width = m_highest - m_lowest;
  if (m_kind != INTEGER && m_hasRange && width > 0 && width / 100 < step) step = width / 100;
  return step;
}

double VntNumberEdit::rounded(double value) const {
  if (m_kind == INTEGER) return std::round(value);
  // The digits that binary arithmetic adds far below the step are noise: 0.30000000000000004.
  double parts = std::round((m_kind == SINGLE ? 1e5 : 1e9) / m_motionStep);
  while (parts > 1 && std::abs(value * parts) >= LARGEST_EXACT) parts = std::round(parts / 10);
  if (parts >= 1) value = std::round(value * parts) / parts;
  return m_kind == SINGLE ? static_cast<float>(value) : value;
}

void VntNumberEdit::begin(Motion motion) {
  if (m_motion == motion) return;
  endMotion(true);
  if (m_typing) enter();
  if (m_typing) return; // a text that is wrong stays
  m_motion = motion;
  m_before = m_exact = m_value;
  m_motionStep = stepSize();
}

void VntNumberEdit::preview(double value) {
  m_exact = std::clamp(value, std::min(m_lowest, m_before), std::max(m_highest, m_before));
  double const shown = rounded(m_exact);
  if (shown == m_value) return;
  m_value = shown;
  showNumber();
  Q_EMIT valuePreviewed(m_value);
}

void VntNumberEdit::endMotion(bool keep) {
  Motion const motion = std::exchange(m_motion, NONE);
  m_pause.stop();
  m_wheelRest = 0;
  if (motion == NONE || motion == PRESSED) return;
  if (keep) {
    Q_EMIT dragFinished();
  } else {
    m_value = m_before;
    showNumber();
    Q_EMIT dragCancelled();
  }
}

void VntNumberEdit::step(double steps, Qt::KeyboardModifiers modifiers) {
  if (isReadOnly()) return;
  begin(STEPPING);
  if (m_motion != STEPPING || !std::isfinite(m_value)) return; // there is nothing to step from
  double amount = m_motionStep * factorOf(modifiers);
  if (m_kind == INTEGER) amount = std::max(1.0, std::round(amount));
  m_pause.start();
  preview(m_value + steps * amount);
}

void VntNumberEdit::dragBy(double pixels, Qt::KeyboardModifiers modifiers) {
  if (!std::isfinite(m_value)) return;
  double const size = std::abs(m_before);
  double perPixel = m_motionStep / 10;
  if (m_kind == INTEGER && m_step == 0)
    perPixel = size < 100 ? 0.25 : std::pow(10, std::floor(std::log10(size)) - 2);
  preview(m_exact + pixels * perPixel * factorOf(modifiers));
}

bool VntNumberEdit::eventFilter(QObject* watched, QEvent* event) {
  bool const isGrip = (watched == m_handle || watched == m_dragLabel) && isEnabled() && !isReadOnly();
  switch (isGrip ? event->type() : QEvent::None) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
      return takeGripEvent(*static_cast<QMouseEvent*>(event));
    default:
      return QLineEdit::eventFilter(watched, event);
  }
}

bool VntNumberEdit::takeGripEvent(QMouseEvent const& event) {
  double const x = event.globalPosition().x();
  bool const isHeld = m_motion == PRESSED || m_motion == DRAGGING;
  if (event.type() == QEvent::MouseMove && isHeld) {
    double const moved = x - m_lastX;
    // A hand that only clicks shakes a little.
    if (m_motion == PRESSED && std::abs(moved) < 3) return true;
    m_motion = DRAGGING;
    m_lastX = x;
    dragBy(moved, event.modifiers());
  } else if (event.button() != Qt::LeftButton) {
    return false;
  } else if (event.type() == QEvent::MouseButtonPress) {
    setFocus(Qt::MouseFocusReason); // for Escape
    begin(PRESSED);
    m_lastX = x;
  } else if (event.type() == QEvent::MouseButtonRelease && isHeld) {
    endMotion(true);
  }
  return true;
}

bool VntNumberEdit::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    auto* const key = static_cast<QKeyEvent*>(event);
    bool const isUndo = key->matches(QKeySequence::Undo);
    if ((key->key() == Qt::Key_Escape && (m_typing || isDragging())) || (isUndo && isDragging())) {
      event->accept();
      return true;
    }
    // There is no typing to undo: the key means the last edit.
    if (!m_typing && (isUndo || key->matches(QKeySequence::Redo))) {
      event->ignore();
      return false;
    }
  } else if (event->type() == QEvent::EnabledChange && !isEnabled()) {
    endMotion(true);
  }
  return QLineEdit::event(event);
}

void VntNumberEdit::keyPressEvent(QKeyEvent* event) {
  if (isDragging() && event->matches(QKeySequence::Undo)) return endMotion(false);
  switch (event->key()) {
    case Qt::Key_Up:
      return step(1, event->modifiers());
    case Qt::Key_Down:
      return step(-1, event->modifiers());
    case Qt::Key_PageUp:
      return step(10, event->modifiers());
    case Qt::Key_PageDown:
      return step(-10, event->modifiers());
    case Qt::Key_Return:
    case Qt::Key_Enter:
      enter();
      if (!m_typing) selectAll();
      return event->accept();
    case Qt::Key_Escape:
      if (isDragging())
        endMotion(false);
      else if (m_typing)
        revert();
      else
        event->ignore();
      return;
    default:
      QLineEdit::keyPressEvent(event);
  }
}

void VntNumberEdit::wheelEvent(QWheelEvent* event) {
  if (!hasFocus() || isReadOnly()) return event->ignore(); // somebody scrolls past
  event->accept();
  QPoint const turned = event->angleDelta();
  m_wheelRest += turned.y() != 0 ? turned.y() : turned.x(); // Alt turns a wheel sideways
  int const notches = m_wheelRest / NOTCH;
  if (notches == 0) return;
  int const rest = m_wheelRest % NOTCH;
  step(notches, event->modifiers());
  m_wheelRest = rest;
}

void VntNumberEdit::focusOutEvent(QFocusEvent* event) {
  bool const comesBack = event->reason() == Qt::PopupFocusReason ||
                         event->reason() == Qt::ActiveWindowFocusReason ||
                         event->reason() == Qt::MenuBarFocusReason;
  QPointer<VntNumberEdit> const self(this);
  if (comesBack)
    endMotion(true);
  else
    enter();
  if (!self) return;
  QLineEdit::focusOutEvent(event);
  if (!m_typing && !comesBack) setCursorPosition(0);
}

void VntNumberEdit::placeHandle() {
  int const size = fontMetrics().horizontalAdvance(QLatin1Char('0')) * 2 + 2;
  bool const isShown = m_handleShown && width() >= 4 * size;
  m_handle->setVisible(isShown);
  setTextMargins(0, 0, isShown ? size : 0, 0);
  m_handle->setGeometry(width() - size - 3, 1, size, height() - 2);
}

void VntNumberEdit::resizeEvent(QResizeEvent* event) {
  QLineEdit::resizeEvent(event);
  placeHandle();
}

void VntNumberEdit::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  if (!m_isWrong) return;
  bool const isDark = palette().color(QPalette::Base).lightness() < 128;
  QPainter painter(this);
  painter.setPen(QPen(isDark ? QColor(0xff, 0x70, 0x70) : QColor(0xb0, 0x00, 0x20), 2));
  painter.drawLine(QPointF(3, height() - 3), QPointF(width() - 3, height() - 3));
}

QSize VntNumberEdit::sizeHint() const {
  QSize hint = QLineEdit::sizeHint();
  hint.setWidth(fontMetrics().horizontalAdvance(QLatin1String("-0.12345678")) + 40);
  return hint;
}

QSize VntNumberEdit::minimumSizeHint() const {
  QSize hint = QLineEdit::minimumSizeHint();
  hint.setWidth(fontMetrics().horizontalAdvance(QLatin1String("-0.123")) + 12);
  return hint;
}
