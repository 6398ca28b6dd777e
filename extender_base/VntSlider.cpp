#include "extender_base/VntSlider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStyleOptionSlider>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {
constexpr int PAUSE_MS = 600; // between two steps that are still one edit
constexpr int TICKS = 1000;
} // namespace

VntSlider::VntSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
  setLimits(0, 1);
  setFocusPolicy(Qt::StrongFocus);
  m_pause.setSingleShot(true);
  m_pause.setInterval(PAUSE_MS);
  connect(&m_pause, &QTimer::timeout, this, [this] {
    if (m_motion == STEPPING) endMotion(true);
  });
  connect(this, &QSlider::valueChanged, this, &VntSlider::userMoved);
}

void VntSlider::setLimits(double lowest, double highest, bool isWhole) {
  QSignalBlocker const blocker(this);
  m_lowest = lowest;
  m_highest = highest;
  m_isWhole = isWhole;
  int const ticks = isWhole ? static_cast<int>(std::clamp(highest - lowest, 1.0, double(TICKS))) : TICKS;
  setRange(0, ticks);
  setSingleStep(std::max(1, ticks / 100));
  setPageStep(std::max(1, ticks / 10));
}

int VntSlider::tickOf(double number) const {
  if (!(m_highest > m_lowest) || std::isnan(number)) return 0;
  double const part = std::clamp((number - m_lowest) / (m_highest - m_lowest), 0.0, 1.0);
  return static_cast<int>(std::lround(part * maximum()));
}

void VntSlider::setNumber(double number) {
  if (m_motion == DRAGGING) return;
  QSignalBlocker const blocker(this);
  setValue(tickOf(number));
}

void VntSlider::userMoved(int tick) {
  double const part = static_cast<double>(tick) / maximum();
  double const number = m_lowest + (m_highest - m_lowest) * part;
  if (m_isWhole) return Q_EMIT numberPreviewed(std::round(number));
  // The digits that binary arithmetic adds far below a tick are noise: 0.30000000000000004.
  double const limit = std::max(std::abs(m_lowest), std::abs(m_highest));
  double const parts = std::pow(10, 9 - std::ceil(std::log10(limit)));
  Q_EMIT numberPreviewed(parts >= 1 ? std::round(number * parts) / parts : number);
}

void VntSlider::endMotion(bool keep) {
  Motion const motion = std::exchange(m_motion, NONE);
  m_pause.stop();
  if (motion == NONE) return;
  setSliderDown(false);
  if (keep) {
    Q_EMIT dragFinished();
  } else {
    QSignalBlocker blocker(this);
    setValue(m_before);
    blocker.unblock();
    Q_EMIT dragCancelled();
  }
}

QRect VntSlider::handle() const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
}

void VntSlider::dragTo(double x) {
  int const length = handle().width();
  int const left = static_cast<int>(std::lround(x - m_grip - length / 2.0));
  setValue(QStyle::sliderValueFromPosition(minimum(), maximum(), left, width() - length));
}

void VntSlider::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  endMotion(true);
  QRectF const grip = handle();
  bool const isBeside = !grip.contains(event->position());
  m_grip = isBeside ? 0 : event->position().x() - grip.center().x();
  m_motion = DRAGGING;
  m_before = value();
  setSliderDown(true);
  if (isBeside) dragTo(event->position().x());
}

void VntSlider::mouseMoveEvent(QMouseEvent* event) {
  if (m_motion == DRAGGING) dragTo(event->position().x());
}

void VntSlider::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && m_motion == DRAGGING) endMotion(true);
}

bool VntSlider::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    auto* const key = static_cast<QKeyEvent*>(event);
    if (m_motion != NONE && (key->key() == Qt::Key_Escape || key->matches(QKeySequence::Undo))) {
      event->accept();
      return true;
    }
  } else if (event->type() == QEvent::EnabledChange && !isEnabled()) {
    endMotion(true);
  }
  return QSlider::event(event);
}

void VntSlider::step(std::function<void()> const& move) {
  bool const began = m_motion == NONE;
  int const old = value();
  if (began) m_before = old;
  m_motion = STEPPING;
  move();
  if (value() != old)
    m_pause.start();
  else if (began)
    m_motion = NONE;
}

void VntSlider::keyPressEvent(QKeyEvent* event) {
  bool const goesBack = event->key() == Qt::Key_Escape || event->matches(QKeySequence::Undo);
  if (goesBack && m_motion != NONE) return endMotion(false);
  if (m_motion == DRAGGING) return;
  step([this, event] { QSlider::keyPressEvent(event); });
}

void VntSlider::wheelEvent(QWheelEvent* event) {
  if (!hasFocus() || m_motion == DRAGGING) return event->ignore(); // somebody scrolls past
  step([this, event] { QSlider::wheelEvent(event); });
  event->accept();
}

void VntSlider::focusOutEvent(QFocusEvent* event) {
  if (m_motion == STEPPING) endMotion(true);
  QSlider::focusOutEvent(event);
}
