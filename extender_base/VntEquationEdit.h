#pragma once

#include "extender_base/VntPartEdit.h"
#include "kestrava/base/SbVec3d.h"

class QLineEdit;
class SbPlane;

/// A line for the equation of a plane: "2x + 3y - z = 5", or its four numbers "2 3 -1 5".
class VntEquationEdit : public VntPartEdit {
  Q_OBJECT
 public:
  explicit VntEquationEdit(QWidget* parent = nullptr);

  /// Sends nothing. What is being typed stays.
  void setPlane(SbPlane const& plane);
  /// What was entered: the plane of the points p with normal . p = constant. The normal is none of length 0.
  SbVec3d const& getNormal() const { return m_normal; }
  double getConstant() const { return m_constant; }
  void revert() override;

  /// False when the text is no linear equation in x, y and z.
  static bool parse(QString const& text, SbVec3d& normal, double& constant);

 protected:
  bool hasTypedText() const override;

 private:
  void enter();

  QLineEdit* m_line;
  QString m_text; // of the plane that was set
  SbVec3d m_normal;
  double m_constant = 0;
};
