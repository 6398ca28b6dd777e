#include "extender_base/VntColorSlider.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <cmath>
#include <utility>

namespace {

constexpr int STEPS = 1000, HANDLE = 9, HEIGHT = 18;

} // namespace

VntColorSlider::VntColorSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
  setRange(0, STEPS);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void VntColorSlider::setPart(double part) {
  setValue(part > 0 ? static_cast<int>(std::lround(qMin(part, 1.0) * STEPS)) : 0);
}

double VntColorSlider::getPart() const { return static_cast<double>(value()) / STEPS; }

void VntColorSlider::setColors(QGradientStops const& colors) {
  if (m_colors == colors) return;
  m_colors = colors;
  update();
}

void VntColorSlider::dropMotion() { m_motion = NONE; }

QSize VntColorSlider::sizeHint() const { return {150, HEIGHT}; }
QSize VntColorSlider::minimumSizeHint() const { return {60, HEIGHT}; }

QRect VntColorSlider::groove() const {
  return QRect(HANDLE / 2, (height() - HEIGHT) / 2 + 3, width() - HANDLE, HEIGHT - 6);
}

void VntColorSlider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF const bar = QRectF(groove()).adjusted(0.5, 0.5, -0.5, -0.5);
  QLinearGradient gradient(bar.topLeft(), bar.topRight());
  gradient.setStops(m_colors);
  QColor line = palette().color(QPalette::WindowText);
  line.setAlpha(isEnabled() ? 120 : 60);
  painter.setOpacity(isEnabled() ? 1 : 0.4);
  painter.setPen(line);
  painter.setBrush(gradient);
  painter.drawRoundedRect(bar, 2, 2);

  bool const isActive = hasFocus() || m_motion != NONE;
  QRectF handle(groove().x() + getPart() * groove().width() - HANDLE / 2.0, (height() - HEIGHT) / 2.0, HANDLE,
                HEIGHT);
  handle.adjust(0.5, 0.5, -0.5, -0.5);
  painter.setPen(
      QPen(palette().color(isActive ? QPalette::Highlight : QPalette::WindowText), isActive ? 2 : 1));
  painter.setBrush(palette().brush(QPalette::Button));
  painter.drawRoundedRect(handle, 2, 2);
}

void VntColorSlider::moveTo(double x) {
  setPart((x - groove().x()) / qMax(1, groove().width()));
  update();
  Q_EMIT moved(getPart());
}

void VntColorSlider::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  end();
  m_motion = DRAG;
  moveTo(event->position().x());
}

void VntColorSlider::mouseMoveEvent(QMouseEvent* event) {
  if (m_motion == DRAG) moveTo(event->position().x());
}

void VntColorSlider::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && m_motion == DRAG) end();
}

void VntColorSlider::moveBy(double part, Motion motion) {
  if (m_motion == DRAG) return;
  m_motion = motion;
  int const before = value();
  setPart(getPart() + part);
  // At the end there is nowhere to go, and a value beyond it stays.
  if (value() != before) Q_EMIT moved(getPart());
}

void VntColorSlider::end() {
  if (std::exchange(m_motion, NONE) == NONE) return;
  update();
  Q_EMIT finished();
}

void VntColorSlider::wheelEvent(QWheelEvent* event) {
  // The wheel scrolls the panel unless the slider was chosen.
  if (!hasFocus() || m_motion == DRAG || event->angleDelta().y() == 0) return event->ignore();
  moveBy(event->angleDelta().y() / 120.0 * 0.01, KEY);
  end();
}

void VntColorSlider::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
      return moveBy(-0.01, KEY);
    case Qt::Key_Right:
    case Qt::Key_Up:
      return moveBy(0.01, KEY);
    case Qt::Key_PageDown:
      return moveBy(-0.1, KEY);
    case Qt::Key_PageUp:
      return moveBy(0.1, KEY);
    case Qt::Key_Home:
      return moveBy(-1, KEY);
    case Qt::Key_End:
      return moveBy(1, KEY);
    default:
      event->ignore();
  }
}

void VntColorSlider::keyReleaseEvent(QKeyEvent* event) {
  if (m_motion == KEY && !event->isAutoRepeat()) end();
  event->ignore();
}

void VntColorSlider::focusOutEvent(QFocusEvent* event) {
  if (m_motion == KEY) end();
  QSlider::focusOutEvent(event);
}
