#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QTimer>

class QLabel;

/// A line for one number. It takes expressions ("1/3", "pi/2", "2*sqrt(2)"; see VntExpression), steps by the
/// wheel (while it has the focus), the arrow keys and PageUp and PageDown (ten times as much), and changes
/// while it is dragged sideways by the handle at its end. With Shift a step or drag does ten times as much,
/// with Ctrl a tenth, of integers no less than one.
///
/// While the user drags or steps, valuePreviewed() is sent for each value and then dragFinished() or, after
/// Escape, dragCancelled(). Steps end after a short pause, when the focus leaves or something else is
/// entered: several turns of the wheel are one edit. What he types is one valueEntered(), when he presses
/// Enter or leaves the line. "nan" and "inf" are taken where they are not ruled out by a range.
class VntNumberEdit : public QLineEdit {
  Q_OBJECT
 public:
  enum Kind { INTEGER, SINGLE, DOUBLE };
  /// Numbers are shown with the fewest digits that give the same number again. Integers are exact up to 2^53.
  explicit VntNumberEdit(Kind kind, QWidget* parent = nullptr);

  /// What can be entered, both included. A number outside is refused and says so; steps and drags stop there.
  /// The value that is shown may be outside.
  void setRange(double lowest, double highest);
  /// What one step of the wheel changes; 0, the start, makes it follow the size of the number.
  void setStep(double step);
  /// The number is an angle in degrees: "deg" then stands for 1, not for pi/180, and "rad" for 180/pi.
  void setDegrees(bool on);
  /// Dragging this label sideways changes the number, too. It may go before the line does.
  void setDragLabel(QLabel* label);
  /// The handle at the right end; shown unless the line is very narrow.
  void setHandleShown(bool on);
  /// Sends nothing. While the user types, his text stays.
  void setValue(double value);
  double getValue() const { return m_value; }
  /// True while the line holds a text that is not entered yet.
  bool isTyping() const { return m_typing; }
  /// True while the user drags, or has just stepped.
  bool isDragging() const { return m_motion != NONE; }
  /// Drops what is typed.
  void revert();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 Q_SIGNALS:
  void valueEntered(double value);
  void valuePreviewed(double value);
  void dragFinished();
  void dragCancelled();
  void typingChanged(bool on);
  /// What was typed is no number, or not one of the range, and why; the text stays. Empty: all is well again.
  void rejected(QString const& reason);

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  enum Motion { NONE, STEPPING, PRESSED, DRAGGING };
  void enter();
  /// Why a number can not be entered; empty: it can.
  QString refusal(double value, bool isFinite) const;
  void reject(QString const& reason);
  void step(double steps, Qt::KeyboardModifiers modifiers);
  bool takeGripEvent(QMouseEvent const& event);
  void dragBy(double pixels, Qt::KeyboardModifiers modifiers);
  void begin(Motion motion);
  void preview(double value);
  void endMotion(bool keep);
  /// A step of the wheel, without a key held.
  double stepSize() const;
  double rounded(double value) const;
  QString digits(double value) const;
  void placeHandle();
  void showNumber();
  void setTyping(bool on);

  Kind m_kind;
  double m_value = 0;
  double m_lowest, m_highest;
  double m_step = 0;
  double m_degree;
  bool m_hasRange = false;
  bool m_typing = false;
  bool m_isWrong = false;

  QWidget* m_handle;
  bool m_handleShown = true;
  QPointer<QWidget> m_dragLabel; // a QLabel, also asked for while that is being destroyed
  Motion m_motion = NONE;
  double m_before = 0;     // the motion
  double m_motionStep = 1; // the step when it began, so that ten up and ten down are none
  double m_exact = 0;      // what it has reached, before rounding
  double m_lastX = 0;      // of the mouse, on the screen
  int m_wheelRest = 0;
  QTimer m_pause;
};
