#include "extender_base/VntPlaneEditor.h"

#include <QLabel>
#include <QVBoxLayout>
#include <cmath>

#include "extender_base/VntComponentsEdit.h"
#include "extender_base/VntEquationEdit.h"
#include "extender_base/VntFoldingForm.h"
#include "kestrava/fields/SoSFPlane.h"

VntPlaneEditor::VntPlaneEditor(VntFieldEdit* edit, QWidget* parent)
    : VntPartsEditor(edit, parent),
      m_normal(new VntComponentsEdit(VntNumberEdit::SINGLE, {{"x", "x", {}}, {"y", "y", {}}, {"z", "z", {}}},
                                     3, this)),
      m_distance(new VntComponentsEdit(VntNumberEdit::SINGLE,
                                       {{"distance", {}, tr("From the origin, along the normal")}}, 1, this)),
      m_equation(new VntEquationEdit(this)),
      m_note(new QLabel(this)) {
  auto* const form = new VntFoldingForm(330);
  form->addRow(tr("Normal"), m_normal);
  form->addRow(tr("Distance"), m_distance);
  form->addRow(tr("Equation"), m_equation);
  content()->addLayout(form);
  content()->addWidget(m_note);
  m_note->setObjectName("normalNote");
  m_note->setWordWrap(true);
  setFocusProxy(m_normal);
  watch(m_normal, [this](bool isDrag) { return takeNormalAndDistance(isDrag); });
  watch(m_distance, [this](bool isDrag) { return takeNormalAndDistance(isDrag); });
  watch(m_equation, [this](bool isDrag) {
    SbVec3d const& normal = m_equation->getNormal();
    double const length = normal.length();
    m_normal->revert();
    m_distance->revert();
    m_normal->setVec(SbVec3f(normal / length));
    return take<SoSFPlane>(
        SbPlane(SbVec3f(normal / length), static_cast<float>(m_equation->getConstant() / length)), isDrag);
  });
}

bool VntPlaneEditor::takeNormalAndDistance(bool isDrag) {
  SbVec3f const normal = m_normal->getVec<SbVec3f>();
  if (normal.length() == 0) return refuse(tr("The normal has length 0: it gives the plane no direction."));
  if (!std::isfinite(normal.length())) return refuse(tr("The normal must be finite."));
  m_normal->setRefused(false);
  m_distance->setRefused(false);
  return take<SoSFPlane>(SbPlane(normal, static_cast<float>(m_distance->getValues()[0])), isDrag);
}

void VntPlaneEditor::showValue() {
  SbPlane const& plane = edit()->getFieldAs<SoSFPlane>()->getValue();
  SbVec3f const typed = m_normal->getVec<SbVec3f>();
  bool const isTyped = typed.length() > 0 && SbPlane(typed, 0).getNormal() == plane.getNormal();
  if (!isTyped) m_normal->setVec(plane.getNormal());
  m_distance->setValues({plane.getDistanceFromOrigin()});
  m_equation->setPlane(plane);
  bool const isScaled = isTyped && typed != plane.getNormal();
  if (isScaled) {
    SbVec3f const& normal = plane.getNormal();
    auto number = [&](int i) { return QString::number(normal[i], 'g', 5); };
    m_note->setText(tr("The normal was brought to length 1 (from %1): %2 %3 %4")
                        .arg(QString::number(typed.length(), 'g', 5), number(0), number(1), number(2)));
  }
  m_note->setVisible(isScaled);
}
