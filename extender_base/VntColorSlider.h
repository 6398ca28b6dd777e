#pragma once

#include <QGradientStops>
#include <QSlider>

/// A slider for one part of a colour, 0 to 1, whose groove shows the colours that it would give.
///
/// A drag, or a key that is held, sends moved() for each value and then finished() once.
class VntColorSlider : public QSlider {
  Q_OBJECT
 public:
  explicit VntColorSlider(QWidget* parent = nullptr);

  /// Where the handle stands; a value outside stands at that end, one that is no number at the start. Sends
  /// nothing.
  void setPart(double part);
  double getPart() const;
  void setColors(QGradientStops const& colors);
  /// A drag that goes on has no effect from now on, and sends no finished().
  void dropMotion();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 Q_SIGNALS:
  void moved(double part);
  void finished();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  enum Motion { NONE, DRAG, KEY };
  QRect groove() const;
  void moveTo(double x);
  void moveBy(double part, Motion motion);
  void end();

  QGradientStops m_colors;
  Motion m_motion = NONE;
};
