#include "extender_base/VntTrackball.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr float STEP = 5 * std::numbers::pi_v<float> / 180;
constexpr int PAUSE_MS = 600;
constexpr int MARGIN = 9; // beside the ball, where it can be turned about the direction of view

SbVec3f axisOf(int i) { return SbVec3f(i == 0, i == 1, i == 2); }

// x, y and z are red, green and blue wherever axes are drawn; these are readable on light and dark.
QColor colorOf(int axis) {
  static QColor const colors[] = {QColor(0xd4, 0x3a, 0x32), QColor(0x3a, 0x9a, 0x3c),
                                  QColor(0x3c, 0x78, 0xdc)};
  return colors[axis];
}

} // namespace

VntTrackball::VntTrackball(QWidget* parent) : VntPartEdit(parent) {
  setObjectName("trackball");
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  setAccessibleName(tr("Trackball"));
  setToolTip(
      tr("Drag to turn; beside the ball, or with the wheel, about the direction of view.\n"
         "Arrow keys, Page Up and Page Down turn by 5 degrees."));
  m_pause.setSingleShot(true);
  m_pause.setInterval(PAUSE_MS);
  connect(&m_pause, &QTimer::timeout, this, [this] {
    if (m_motion == STEPPING) endMotion(true);
  });
}

QSize VntTrackball::sizeHint() const { return QSize(132, 132); }

void VntTrackball::setRotation(SbRotation const& rotation) {
  m_rotation = rotation;
  update();
}

int VntTrackball::side() const { return std::min(width(), height()); }
double VntTrackball::radius() const { return side() / 2.0 - MARGIN; }
QPointF VntTrackball::center() const { return QPointF(width() / 2.0, side() / 2.0); }

QPointF VntTrackball::toScreen(SbVec3f const& point) const {
  return center() + QPointF(point[0], -point[1]) * radius();
}

// On the ball, or on its edge for a position beside it.
SbVec3f VntTrackball::pointAt(QPointF const& position) const {
  QPointF const offset = (position - center()) / radius();
  double const x = offset.x(), y = -offset.y(), beyond = 1 - x * x - y * y;
  return SbVec3f(x, y, beyond > 0 ? std::sqrt(beyond) : 0).normalized();
}

void VntTrackball::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!isEnabled()) painter.setOpacity(0.4);
  QPointF const middle = center();
  double const r = radius();
  QColor const base = palette().color(QPalette::Base);
  QRadialGradient shade(middle - QPointF(r, r) * 0.35, r * 1.5);
  shade.setColorAt(0, base.lightness() < 128 ? base.lighter(220) : base);
  shade.setColorAt(1, base.lightness() < 128 ? base : base.darker(150));
  painter.setBrush(shade);
  // The focus is shown at the ball: a frame would be for the whole square.
  painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 2)
                            : QPen(palette().color(QPalette::Mid), 1));
  painter.drawEllipse(middle, r, r);
  painter.setBrush(Qt::NoBrush);
  for (bool isFront : {false, true}) {
    for (int axis = 0; axis < 3; ++axis) drawCircle(painter, axis, isFront);
  }
  // The axes that point away first.
  int order[] = {0, 1, 2};
  auto depth = [this](int axis) { return m_rotation.multVec(axisOf(axis))[2]; };
  std::sort(order, order + 3, [&](int a, int b) { return depth(a) < depth(b); });
  for (int axis : order) drawAxis(painter, axis);
}

// The great circle across an axis; without it one would see the axes move, but no ball.
void VntTrackball::drawCircle(QPainter& painter, int axis, bool isFront) const {
  constexpr int SEGMENTS = 64;
  SbVec3f const u = m_rotation.multVec(axisOf((axis + 1) % 3)),
                v = m_rotation.multVec(axisOf((axis + 2) % 3));
  QPainterPath path;
  bool isDrawing = false;
  for (int i = 0; i <= SEGMENTS; ++i) {
    float const angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / SEGMENTS;
    SbVec3f const point = u * std::cos(angle) + v * std::sin(angle);
    bool const isSeen = (point[2] >= 0) == isFront;
    if (isSeen && isDrawing)
      path.lineTo(toScreen(point));
    else if (isSeen)
      path.moveTo(toScreen(point));
    isDrawing = isSeen;
  }
  QColor color = colorOf(axis);
  color.setAlpha(isFront ? 130 : 45);
  painter.setPen(QPen(color, 1));
  painter.drawPath(path);
}

void VntTrackball::drawAxis(QPainter& painter, int axis) const {
  SbVec3f const end = m_rotation.multVec(axisOf(axis));
  QPointF const tip = toScreen(end * 0.88f);
  QColor color = colorOf(axis);
  if (end[2] < -0.05f) color.setAlpha(110);
  painter.setPen(QPen(color, 2.5, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(center(), tip);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawEllipse(tip, 7, 7);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(Qt::white);
  QFont small = font();
  small.setPixelSize(10);
  small.setBold(true);
  painter.setFont(small);
  painter.drawText(QRectF(tip - QPointF(7, 8), QSizeF(14, 14)), Qt::AlignCenter,
                   QString(QLatin1Char("xyz"[axis])));
}

void VntTrackball::endMotion(bool keep) {
  Motion const motion = std::exchange(m_motion, NONE);
  m_pause.stop();
  if (motion == NONE || motion == PRESSED) return;
  if (keep) return Q_EMIT dragFinished();
  setRotation(m_start);
  Q_EMIT dragCancelled();
}

void VntTrackball::turn(SbVec3f const& axis, double steps) {
  if (m_motion == PRESSED || m_motion == DRAGGING) return;
  if (m_motion == NONE) {
    Q_EMIT beforeChange();
    m_start = m_rotation;
  }
  m_motion = STEPPING;
  m_pause.start();
  setRotation(m_rotation * SbRotation(axis, STEP * static_cast<float>(steps)));
  Q_EMIT previewed();
}

void VntTrackball::mousePressEvent(QMouseEvent* event) {
  bool const isBelow = event->position().y() > side();
  if (event->button() != Qt::LeftButton || isBelow) return VntPartEdit::mousePressEvent(event);
  endMotion(true);
  Q_EMIT beforeChange();
  m_motion = PRESSED;
  m_start = m_rotation;
  m_from = event->position();
}

void VntTrackball::mouseMoveEvent(QMouseEvent* event) {
  if (m_motion != PRESSED && m_motion != DRAGGING) return;
  m_motion = DRAGGING;
  QPointF const before = m_from - center(), now = event->position() - center();
  if (std::hypot(before.x(), before.y()) > radius()) {
    double const angle = std::atan2(-now.y(), now.x()) - std::atan2(-before.y(), before.x());
    setRotation(m_start * SbRotation(axisOf(2), static_cast<float>(angle)));
  } else {
    setRotation(m_start * SbRotation(pointAt(m_from), pointAt(event->position())));
  }
  Q_EMIT previewed();
}

void VntTrackball::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && m_motion != STEPPING) endMotion(true);
}

bool VntTrackball::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    auto* const key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Escape && isDragging()) {
      event->accept();
      return true;
    }
    // What these take back are whole motions.
    if (m_motion == STEPPING && (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)))
      endMotion(true);
  } else if (event->type() == QEvent::EnabledChange && !isEnabled()) {
    endMotion(true);
  }
  return VntPartEdit::event(event);
}

void VntTrackball::focusOutEvent(QFocusEvent* event) {
  endMotion(true);
  VntPartEdit::focusOutEvent(event);
}

void VntTrackball::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      return turn(axisOf(1), -1);
    case Qt::Key_Right:
      return turn(axisOf(1), 1);
    case Qt::Key_Up:
      return turn(axisOf(0), -1);
    case Qt::Key_Down:
      return turn(axisOf(0), 1);
    case Qt::Key_PageUp:
      return turn(axisOf(2), 1);
    case Qt::Key_PageDown:
      return turn(axisOf(2), -1);
    case Qt::Key_Escape:
      if (isDragging()) return endMotion(false);
      break;
    default:
      break;
  }
  VntPartEdit::keyPressEvent(event);
}

void VntTrackball::wheelEvent(QWheelEvent* event) {
  // Without the focus the wheel moves the page.
  if (!hasFocus() || event->angleDelta().y() == 0) return event->ignore();
  turn(axisOf(2), event->angleDelta().y() / 120.0);
}
