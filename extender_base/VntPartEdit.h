#pragma once

#include <QWidget>

/// An input for a part of a field's value: a row of numbers, a rotation. It knows no field; an editor watches
/// it (VntPartsEditor).
///
/// What the user enters at once is told with entered(). A drag is any number of previewed(), then
/// dragFinished() or dragCancelled(). The new value is in place when a signal is sent; beforeChange() comes
/// first, for bringing up to date what the user does not change now.
class VntPartEdit : public QWidget {
  Q_OBJECT
 public:
  using QWidget::QWidget;

  /// True while it shows what is not in the field: something that is typed and not entered yet, or refused.
  bool isPending() const { return isRefused() || hasTypedText(); }
  virtual bool isRefused() const { return m_refused; }
  /// What was entered can not be the field's value: it stays, to be mended by the user.
  void setRefused(bool on) {
    if (m_refused == on) return;
    m_refused = on;
    Q_EMIT pendingChanged();
  }
  /// Drops all that is pending. The value to be shown is then set by the caller.
  virtual void revert() { setRefused(false); }

 Q_SIGNALS:
  void beforeChange();
  void entered();
  void previewed();
  void dragFinished();
  void dragCancelled();
  void pendingChanged();
  /// What was typed is no value, and why; the text stays. Empty: it is one now.
  void rejected(QString const& reason);

 protected:
  virtual bool hasTypedText() const = 0;

 private:
  bool m_refused = false;
};
