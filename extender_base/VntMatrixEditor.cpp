#include "extender_base/VntMatrixEditor.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <algorithm>
#include <cmath>

#include "extender_base/VntComponentsEdit.h"
#include "extender_base/VntFoldingForm.h"
#include "extender_base/VntRotationEdit.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/fields/SoSFMatrix.h"

namespace {

bool isFinite(SbMatrix const& matrix) {
  return std::all_of(matrix[0], matrix[0] + 16, [](float number) { return std::isfinite(number); });
}

bool isNear(SbMatrix const& a, SbMatrix const& b) {
  float largest = 0, farthest = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      largest = std::max(largest, std::abs(a[i][j]));
      farthest = std::max(farthest, std::abs(a[i][j] - b[i][j]));
    }
  }
  return farthest <= 1e-4f * largest;
}

// What single precision has left of a factor of 2, say 1.9999998, is shown as 2.
SbVec3f withoutNoise(SbVec3f const& factors) {
  SbVec3f result;
  for (int i = 0; i < 3; ++i) result[i] = QString::number(factors[i], 'g', 6).toFloat();
  return result.equals(factors, 3e-7f * factors.length()) ? result : factors;
}

} // namespace

VntMatrixEditor::VntMatrixEditor(VntFieldEdit* edit, QWidget* parent) : VntPartsEditor(edit, parent) {
  // Not a tab widget: that is always as high as its highest page.
  auto* const pages = new QTabBar(this);
  pages->setObjectName("pages");
  pages->setExpanding(false);
  pages->addTab(tr("Grid"));
  pages->addTab(tr("Parts"));
  pages->setTabToolTip(0, tr("The 16 numbers; points are row vectors, so the last row is the translation"));
  pages->setTabToolTip(1, tr("Translation, rotation and scale"));
  content()->addWidget(pages);
  QWidget* const grid = buildGrid();
  QWidget* const parts = buildParts();
  content()->addWidget(grid);
  content()->addWidget(parts);
  parts->hide();
  connect(pages, &QTabBar::currentChanged, this, [grid, parts](int page) {
    (page == 0 ? parts : grid)->hide();
    (page == 0 ? grid : parts)->show();
  });
  content()->addLayout(buildButtons());
  setFocusProxy(m_grid);
}

QWidget* VntMatrixEditor::buildGrid() {
  auto* const page = new QWidget(this);
  std::vector<VntComponent> components;
  for (int i = 0; i < 16; ++i) {
    QString const tip = i / 4 == 3 && i % 4 < 3 ? tr("Translation, %1").arg(QLatin1Char("xyz"[i % 4]))
                                                : tr("Row %1, column %2").arg(i / 4 + 1).arg(i % 4 + 1);
    components.push_back({QStringLiteral("m%1%2").arg(i / 4).arg(i % 4), {}, tip});
  }
  m_grid = new VntComponentsEdit(VntNumberEdit::SINGLE, components, 4, page);
  m_grid->setFoldable(false);
  auto* const layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_grid);
  watch(m_grid, [this](bool isDrag) {
    SbMatrix matrix;
    std::copy_n(m_grid->getValues().begin(), 16, matrix[0]);
    return take<SoSFMatrix>(matrix, isDrag);
  });
  return page;
}

QWidget* VntMatrixEditor::buildParts() {
  auto* const page = new QWidget(this);
  auto components = [](QString const& name) {
    return std::vector<VntComponent>{{name + "X", "x", {}}, {name + "Y", "y", {}}, {name + "Z", "z", {}}};
  };
  m_reason = new QLabel(page);
  m_reason->setObjectName("reason");
  m_reason->setWordWrap(true);
  m_parts = new QWidget(page);
  m_parts->setObjectName("parts");
  m_translation = new VntComponentsEdit(VntNumberEdit::SINGLE, components("translation"), 3, m_parts);
  m_rotation = new VntRotationEdit(VntRotationEdit::ALL, m_parts);
  m_scale = new VntComponentsEdit(VntNumberEdit::SINGLE, components("scale"), 3, m_parts);
  m_scaleOrientation = new VntRotationEdit(VntRotationEdit::AXIS_AND_ANGLE, m_parts);
  m_translation->setObjectName("translation");
  m_rotation->setObjectName("rotation");
  m_scale->setObjectName("scale");
  m_scaleOrientation->setObjectName("scaleOrientation");
  m_scaleOrientation->setToolTip(tr("Turns the axes along which is scaled"));
  m_scale->setVec(SbVec3f(1, 1, 1));
  m_form = new VntFoldingForm(520, m_parts);
  m_form->addRow(tr("Translation"), m_translation);
  m_form->addRow(tr("Rotation"), m_rotation);
  m_form->addRow(tr("Scale"), m_scale);
  m_form->addRow(tr("Scale axes"), m_scaleOrientation);
  auto* const layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_reason);
  layout->addWidget(m_parts);
  for (VntPartEdit* part :
       {static_cast<VntPartEdit*>(m_translation), static_cast<VntPartEdit*>(m_rotation),
        static_cast<VntPartEdit*>(m_scale), static_cast<VntPartEdit*>(m_scaleOrientation)}) {
    watch(part, [this, part](bool isDrag) {
      bool const isTurn = part == m_rotation && m_rotation->wasTurned();
      return take<SoSFMatrix>(compose(), isDrag,
                              isTurn ? tr("Turn %1").arg(edit()->getDescription()) : QString());
    });
  }
  return page;
}

QLayout* VntMatrixEditor::buildButtons() {
  m_determinant = new QLabel(this);
  m_determinant->setObjectName("determinant");
  m_determinant->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* const buttons = new QHBoxLayout;
  addButton(buttons, "matrixIdentity", tr("Identity"), tr("The matrix that changes nothing"),
            &VntMatrixEditor::makeIdentity);
  addButton(buttons, "inverse", tr("Inverse"), tr("The matrix that undoes what this one does"),
            &VntMatrixEditor::invert);
  addButton(buttons, "transpose", tr("Transpose"), tr("Exchanges rows and columns"),
            &VntMatrixEditor::transposeMatrix);
  buttons->addStretch();
  auto* const rows = new QVBoxLayout;
  rows->addLayout(buttons);
  rows->addWidget(m_determinant);
  return rows;
}

void VntMatrixEditor::addButton(QLayout* layout, char const* name, QString const& text, QString const& tip,
                                void (VntMatrixEditor::*press)()) {
  auto* const button = new QPushButton(text, this);
  button->setObjectName(name);
  button->setToolTip(tip);
  connect(button, &QPushButton::clicked, this, [this, press] {
    if (edit()->getField()) (this->*press)();
  });
  layout->addWidget(button);
}

SbMatrix const& VntMatrixEditor::getMatrix() const { return edit()->getFieldAs<SoSFMatrix>()->getValue(); }

void VntMatrixEditor::setMatrix(SbMatrix const& matrix, QString const& what) {
  for (VntComponentsEdit* part : {m_grid, m_translation, m_scale}) part->revert();
  for (VntRotationEdit* part : {m_rotation, m_scaleOrientation}) part->revert();
  edit()->set<SoSFMatrix>(matrix, what.arg(edit()->getDescription()));
}

void VntMatrixEditor::makeIdentity() { setMatrix(SbMatrix(), tr("Set %1 to the identity")); }
void VntMatrixEditor::transposeMatrix() { setMatrix(getMatrix().transpose(), tr("Transpose %1")); }

void VntMatrixEditor::invert() {
  bool exists = false;
  SbMatrix const inverse = getMatrix().inverse(&exists);
  if (!isFinite(getMatrix())) {
    refuse(tr("A matrix with numbers that are not finite has no inverse."));
  } else if (!exists) {
    refuse(tr("The matrix is singular (its determinant is 0): it has no inverse."));
  } else if (!isFinite(inverse)) {
    refuse(tr("The inverse has numbers that are too large."));
  } else {
    setMatrix(inverse, tr("Invert %1"));
  }
}

void VntMatrixEditor::showValue() {
  SbMatrix const& matrix = getMatrix();
  m_grid->setValues(std::vector<double>(matrix[0], matrix[0] + 16));
  m_determinant->setText(tr("Determinant %1").arg(QString::number(matrix.det4(), 'g', 7)));
  showParts(matrix);
}

SbMatrix VntMatrixEditor::compose() const {
  SbMatrix matrix;
  matrix.setTransform(m_translation->getVec<SbVec3f>(), m_rotation->getRotation(), m_scale->getVec<SbVec3f>(),
                      m_scaleOrientation->getRotation(), SbVec3f());
  return matrix;
}

void VntMatrixEditor::showParts(SbMatrix const& matrix) {
  bool const isShown = compose() == matrix;
  QString const reason = isShown ? QString() : split(matrix);
  if (isShown) {
    // A text that was dropped may still stand in them.
    for (VntRotationEdit* part : {m_rotation, m_scaleOrientation}) part->setRotation(part->getRotation());
  }
  m_reason->setText(reason);
  m_reason->setVisible(!reason.isEmpty());
  m_parts->setVisible(reason.isEmpty());
  SbVec3f const scale = m_scale->getVec<SbVec3f>();
  bool const isUniform = scale[0] == scale[1] && scale[1] == scale[2];
  // Where all directions are scaled alike, their axes tell nothing.
  m_form->setRowVisible(m_scaleOrientation, !isUniform || !m_scaleOrientation->getRotation().isIdentity() ||
                                                m_scaleOrientation->isPending());
}

QString VntMatrixEditor::split(SbMatrix const& matrix) {
  if (!isFinite(matrix))
    return tr("The matrix has numbers that are not finite. It can be edited as a grid only.");
  if (!matrix.isAffine()) {
    return tr(
        "The last column is not 0 0 0 1: the matrix is projective, and no translation, rotation and scale "
        "make "
        "it. It can be edited as a grid only.");
  }
  bool isRegular = false;
  matrix.inverse(&isRegular);
  if (!isRegular) {
    return tr(
        "The matrix is singular (its determinant is 0): a direction is lost, so that its rotation is not "
        "known. "
        "It can be edited as a grid only.");
  }
  SbVec3f translation, scale;
  SbRotation rotation, scaleOrientation;
  matrix.getTransform(translation, rotation, scale, scaleOrientation);
  SbMatrix again;
  again.setTransform(translation, rotation, scale, scaleOrientation, SbVec3f());
  if (!isNear(matrix, again)) {
    return tr("The numbers are too far apart to split the matrix. It can be edited as a grid only.");
  }
  m_translation->setVec(translation);
  m_rotation->setRotation(rotation);
  m_scale->setVec(withoutNoise(scale));
  m_scaleOrientation->setRotation(scaleOrientation);
  return {};
}
