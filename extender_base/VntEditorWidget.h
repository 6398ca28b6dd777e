#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QVBoxLayout;
class VntFieldEdit;

/// Base of the editors: shows the field's value again whenever it changes, but for what the user is typing. A
/// change by the program is then told beside the text, which stays until Enter takes it or Escape drops it.
/// Escape also ends a drag and gives back the value from before. While nobody can see the editor it does
/// nothing and catches up when it is shown again.
class VntEditorWidget : public QWidget {
  Q_OBJECT
 public:
  VntEditorWidget(VntFieldEdit* edit, QWidget* parent);

  /// Shows the value, or tells the user of it while he is typing. The panel's and makeEditor()'s.
  void refresh();
  /// Drops what is typed or dragged and not entered yet; the panel's, before it takes another field.
  virtual void giveUp();
  /// The field can not be changed now. An editor in which there is something to scroll or to copy stays of use.
  virtual void setReadOnly(bool on) { setEnabled(!on); }
  /// The line that says "changed to ...", for a panel to show it where it is in sight. It comes back before
  /// the editor goes.
  QLabel* getNote() const { return m_note; }

 protected:
  /// Puts the field's value into the widgets, whose signals are not to answer with an edit. The field is
  /// there.
  virtual void showValue() = 0;
  /// The value in one short line, for telling the user of a change; null: what he types at has not changed.
  virtual QString valueText() const;

  VntFieldEdit* edit() const { return m_edit; }
  /// Where an editor puts its widgets; free space is below.
  QVBoxLayout* content() const { return m_content; }

  /// The user has begun to type something that is not entered yet, or has ended.
  void setTyping(bool on);
  bool isTyping() const { return m_typing; }
  /// Typing begins when the user changes this line's text.
  void watchTyping(QLineEdit* line);
  /// Drops what is being typed, or gives up a drag.
  virtual void escape();
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void valueChanged();

  VntFieldEdit* m_edit;
  QVBoxLayout* m_content;
  QLabel* m_note;
  bool m_typing = false;
  bool m_isBehind = false; // the value has changed while the editor was hidden
};
