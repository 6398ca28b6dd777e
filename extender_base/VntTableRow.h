#pragma once

#include <QGroupBox>
#include <memory>

class SoField;
class VntEditorWidget;
class VntFieldEdit;
class VntTableEdits;

/// The current value of a table, in the editor for a field of one such value. For types of which a person
/// sees more there than in the cells: colours, rotations, matrices, planes.
class VntTableRow : public QGroupBox {
  Q_OBJECT
 public:
  /// Null for the other types. `edit` and `edits` outlive it.
  static VntTableRow* create(VntFieldEdit* edit, VntTableEdits& edits, QWidget* parent);
  ~VntTableRow() override;

  /// -1: none. What is half done on the one before is dropped.
  void setRow(int row);
  /// The values of the table have changed.
  void follow();
  void giveUp();

  /// There may be no room for it.
  QSize minimumSizeHint() const override { return {QGroupBox::minimumSizeHint().width(), 0}; }

 private:
  class Edit;
  using Maker = QWidget* (*)(VntFieldEdit* edit, QWidget* parent);
  VntTableRow(VntFieldEdit* edit, VntTableEdits& edits, std::unique_ptr<SoField> value, Maker make,
              QWidget* parent);

  std::unique_ptr<SoField> m_value; // a copy of the row's
  std::unique_ptr<Edit> m_edit;
  VntEditorWidget* m_editor;
};
