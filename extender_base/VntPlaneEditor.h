#pragma once

#include "extender_base/VntPartsEditor.h"

class QLabel;
class SbPlane;
class VntComponentsEdit;
class VntEquationEdit;

/// A plane as its normal and its distance from the origin, and as an equation. The field's normal has length
/// 1; one of another length stays as it was typed, so that its components can be entered one by one.
class VntPlaneEditor : public VntPartsEditor {
  Q_OBJECT
 public:
  VntPlaneEditor(VntFieldEdit* edit, QWidget* parent);

 private:
  void showValue() override;
  bool takeNormalAndDistance(bool isDrag);

  VntComponentsEdit* m_normal;
  VntComponentsEdit* m_distance;
  VntEquationEdit* m_equation;
  QLabel* m_note;
};
