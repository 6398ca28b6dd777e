#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QToolButton;

/// A text to be typed: one line, or several where that is allowed and the user wants it or the text has them.
/// Enter enters a line, Ctrl+Enter several, and so does leaving the box; entered() is sent when something was
/// typed.
class VntTextBox : public QWidget {
  Q_OBJECT
 public:
  explicit VntTextBox(bool allowsLines, QWidget* parent = nullptr);

  /// Sends nothing. Of a text that is very long (more than 65536 characters) only the beginning is shown, and
  /// it can not be edited.
  void setText(QString const& text);
  QString text() const;
  /// True from the first key until setText(), and not when the user has taken all back.
  bool isModified() const;
  bool hasLines() const { return m_hasLines; }

 Q_SIGNALS:
  void edited();
  void entered();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void showLines(bool on);
  void toggleLines(bool on);
  void changed();
  void updateHint();

  bool m_allowsLines;
  bool m_hasLines = false;
  bool m_isCut = false;
  qsizetype m_length = 0;
  QLineEdit* m_line;
  QPlainTextEdit* m_lines;
  QToolButton* m_toggle;
  QLabel* m_hint;
};
