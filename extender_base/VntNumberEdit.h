#pragma once

#include <QLineEdit>

/// A line for one number. It takes expressions ("1/3", "pi/2", "2*sqrt(2)"), steps by the wheel and the arrow
/// keys (Shift: ten times as much, Ctrl: a tenth), and changes while it is dragged sideways by the handle at
/// its end.
///
/// While the user drags, valuePreviewed() is sent for each value and then dragFinished() or, after Escape,
/// dragCancelled(). Everything else that he enters is one valueEntered().
class VntNumberEdit : public QLineEdit {
  Q_OBJECT
 public:
  enum Kind { INTEGER, SINGLE, DOUBLE };
  /// Single-precision numbers are shown with the fewest digits that give the same number again.
  explicit VntNumberEdit(Kind kind, QWidget* parent = nullptr);

  /// What can be entered, both included. A number outside is refused and says so.
  void setRange(double lowest, double highest);
  /// What one step of the wheel changes; 0, the start, makes it follow the size of the number.
  void setStep(double step);
  /// Sends nothing. While the user types, his text stays.
  void setValue(double value);
  double getValue() const { return m_value; }
  /// True while the line holds a text that is not entered yet.
  bool isTyping() const { return m_typing; }
  /// Drops what is typed.
  void revert();

 Q_SIGNALS:
  void valueEntered(double value);
  void valuePreviewed(double value);
  void dragFinished();
  void dragCancelled();
  void typingChanged(bool on);
  /// What was typed is no number, or not one of the range, and why; the text stays.
  void rejected(QString const& reason);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void enter();
  void step(double steps, Qt::KeyboardModifiers modifiers);
  void showNumber();
  void setTyping(bool on);

  Kind m_kind;
  double m_value = 0;
  double m_lowest, m_highest;
  double m_step = 0;
  bool m_typing = false;
};
