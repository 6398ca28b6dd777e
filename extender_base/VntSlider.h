#pragma once

#include <QSlider>
#include <QTimer>
#include <functional>

/// A slider for a number of a range. A click beside the handle takes it there; the wheel turns it only while
/// it has the focus.
///
/// While the user moves it, numberPreviewed() is sent for each number and then dragFinished() or, after
/// Escape, dragCancelled(). Key and wheel steps end after a short pause or when the focus leaves.
class VntSlider : public QSlider {
  Q_OBJECT
 public:
  explicit VntSlider(QWidget* parent = nullptr);

  /// The numbers of its ends. `isWhole`: it stops at whole numbers only.
  void setLimits(double lowest, double highest, bool isWhole = false);
  double getLowest() const { return m_lowest; }
  double getHighest() const { return m_highest; }
  /// Sends nothing; ignored while the user drags. A number outside is shown as the end of the range.
  void setNumber(double number);
  bool isMoving() const { return m_motion != NONE; }

 Q_SIGNALS:
  void numberPreviewed(double number);
  void dragFinished();
  void dragCancelled();

 protected:
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  /// Where the handle is now. It goes from one end of the slider to the other.
  virtual QRect handle() const;

 private:
  enum Motion { NONE, STEPPING, DRAGGING };
  void userMoved(int tick);
  void step(std::function<void()> const& move);
  void dragTo(double x);
  void endMotion(bool keep);
  int tickOf(double number) const;

  double m_lowest = 0, m_highest = 1;
  bool m_isWhole = false;
  Motion m_motion = NONE;
  int m_before = 0;  // the motion
  double m_grip = 0; // where the handle was taken, from its middle
  QTimer m_pause;
};
