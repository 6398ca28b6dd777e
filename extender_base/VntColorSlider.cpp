#include "extender_base/VntColorSlider.h"

#include <QPainter>
#include <QStyle>

namespace {

constexpr int HANDLE = 9, HEIGHT = 18;

} // namespace

void VntColorSlider::setColors(QGradientStops const& colors) {
  if (m_colors == colors) return;
  m_colors = colors;
  update();
}

QSize VntColorSlider::sizeHint() const { return {150, HEIGHT}; }
QSize VntColorSlider::minimumSizeHint() const { return {60, HEIGHT}; }

QRect VntColorSlider::handle() const {
  int const left = QStyle::sliderPositionFromValue(minimum(), maximum(), value(), width() - HANDLE);
  return {left, (height() - HEIGHT) / 2, HANDLE, HEIGHT};
}

void VntColorSlider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF const bar(HANDLE / 2.0, (height() - HEIGHT) / 2 + 3.5, width() - HANDLE, HEIGHT - 7);
  QLinearGradient gradient(bar.topLeft(), bar.topRight());
  gradient.setStops(m_colors);
  QColor line = palette().color(QPalette::WindowText);
  line.setAlpha(isEnabled() ? 120 : 60);
  painter.setOpacity(isEnabled() ? 1 : 0.4);
  painter.setPen(line);
  painter.setBrush(gradient);
  painter.drawRoundedRect(bar, 2, 2);

  bool const isActive = hasFocus() || isMoving();
  painter.setPen(
      QPen(palette().color(isActive ? QPalette::Highlight : QPalette::WindowText), isActive ? 2 : 1));
  painter.setBrush(palette().brush(QPalette::Button));
  painter.drawRoundedRect(QRectF(handle()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
}
