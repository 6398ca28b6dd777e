#pragma once

class QString;
class QWidget;

/// The boxes that tell the user about a fault: modal, one Ok button. While nobody can answer (a picture is
/// taken of the window) title and text go to standard error instead.
class VantleMessageBox {
 public:
  static void information(QWidget* parent, QString const& title, QString const& text);
  static void warning(QWidget* parent, QString const& title, QString const& text);
  static void critical(QWidget* parent, QString const& title, QString const& text);

  static void setUnattended(bool on) { m_unattended = on; }
  static bool isUnattended() { return m_unattended; }

 private:
  static bool m_unattended;
};
