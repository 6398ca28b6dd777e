#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;
class QScrollArea;
class SoField;
class VntFieldEdit;
class VntFieldEditor;

/// What the dock "Field Editor" holds: the name and the state of a field, an editor for its value, and what
/// is wrong with what was entered.
class VntFieldEditorPanel : public QWidget {
  Q_OBJECT
 public:
  explicit VntFieldEditorPanel(QWidget* parent = nullptr);
  ~VntFieldEditorPanel() override;

  /// Null: no field. The first of the makers that makes an editor is taken. The same field again changes
  /// nothing. The keyboard focus stays where it is.
  void setField(SoField* field, QList<VntFieldEditor*> const& makers);
  /// The editor that is shown; null when there is none.
  QWidget* getEditor() const { return m_editor; }
  VntFieldEdit* getEdit() const { return m_edit.get(); }
  /// Gives the keyboard to the editor, or to the first thing in the panel that takes it.
  void focusEditor();

 protected:
  void changeEvent(QEvent* event) override;
  /// For the lines of the editor: undo and redo are the window's where a line has nothing to undo itself.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildHeader();
  void clear();
  void orderTabs();
  void showState();
  void showProblem(QString const& problem);
  void colorProblem();

  std::unique_ptr<VntFieldEdit> m_edit;
  QPointer<QWidget> m_editor;
  QLabel* m_title;
  QLabel* m_subtitle;
  QWidget* m_state; // the row of the following ones
  QCheckBox* m_ignored;
  QPushButton* m_reset;
  QLabel* m_source;
  QPushButton* m_disconnect;
  QScrollArea* m_area;
  QLabel* m_problem;
};
