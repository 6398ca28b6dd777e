#pragma once

#include "extender_base/VntPartsEditor.h"
#include "kestrava/base/SbMatrix.h"

class QFormLayout;
class QLabel;
class VntComponentsEdit;
class VntRotationEdit;

/// A matrix as 16 numbers, or split into translation, rotation and scale where that is possible. The parts
/// stay as they were entered for as long as they make the field's matrix: there are several for each.
class VntMatrixEditor : public VntPartsEditor {
  Q_OBJECT
 public:
  VntMatrixEditor(VntFieldEdit* edit, QWidget* parent);

 private:
  QWidget* buildGrid();
  QWidget* buildParts();
  QLayout* buildButtons();
  void addButton(QLayout* layout, char const* name, QString const& text, QString const& tip,
                 void (VntMatrixEditor::*press)());

  void showValue() override;
  void showParts(SbMatrix const& matrix);
  /// Why a matrix is none of translation, rotation and scale; empty when it is, with the parts shown.
  QString split(SbMatrix const& matrix);
  SbMatrix compose() const;

  SbMatrix const& getMatrix() const;
  void setMatrix(SbMatrix const& matrix, QString const& what);
  void makeIdentity();
  void invert();
  void transposeMatrix();

  VntComponentsEdit* m_grid;
  QLabel* m_determinant;
  QLabel* m_reason;
  QWidget* m_parts;
  QFormLayout* m_form;
  VntComponentsEdit* m_translation;
  VntRotationEdit* m_rotation;
  VntComponentsEdit* m_scale;
  VntRotationEdit* m_scaleOrientation;
};
