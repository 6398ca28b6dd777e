#pragma once

#include <QTimer>

#include "extender_base/VntPartEdit.h"
#include "kestrava/base/SbRotation.h"

/// A ball with the axes of a rotation, seen along -z with y up. Dragging it turns it about axes of the view,
/// dragging beside it about the direction of view; so do the arrow keys, Page Up, Page Down and the wheel, by
/// five degrees. Such steps are one drag until there is a short pause.
class VntTrackball : public VntPartEdit {
  Q_OBJECT
 public:
  explicit VntTrackball(QWidget* parent = nullptr);

  /// Sends nothing.
  void setRotation(SbRotation const& rotation);
  SbRotation const& getRotation() const { return m_rotation; }
  /// True while the user drags, or has just stepped.
  bool isDragging() const { return m_motion != NONE; }

  QSize sizeHint() const override;

 protected:
  bool hasTypedText() const override { return false; }
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  enum Motion { NONE, STEPPING, PRESSED, DRAGGING };
  void endMotion(bool keep);
  // The ball is as large as it can be, at the top.
  int side() const;
  double radius() const;
  QPointF center() const;
  SbVec3f pointAt(QPointF const& position) const;
  QPointF toScreen(SbVec3f const& point) const;
  void turn(SbVec3f const& axis, double steps);
  void drawCircle(QPainter& painter, int axis, bool isFront) const;
  void drawAxis(QPainter& painter, int axis) const;

  SbRotation m_rotation;
  SbRotation m_start; // where the motion began
  QPointF m_from;
  Motion m_motion = NONE;
  QTimer m_pause;
};
