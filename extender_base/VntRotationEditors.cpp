// Editors for rotations and matrices.

#include <QVBoxLayout>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntMatrixEditor.h"
#include "extender_base/VntPartsEditor.h"
#include "extender_base/VntRotationEdit.h"
#include "kestrava/fields/SoSFRotation.h"

namespace {

class RotationEditor : public VntPartsEditor {
 public:
  RotationEditor(VntFieldEdit* edit, QWidget* parent)
      : VntPartsEditor(edit, parent), m_rotation(new VntRotationEdit(VntRotationEdit::ALL, this)) {
    m_rotation->setObjectName("rotation");
    content()->addWidget(m_rotation);
    growContent(); // of the ball
    setFocusProxy(m_rotation);
    watch(m_rotation, [this](bool isDrag) {
      QString const what =
          m_rotation->wasTurned() ? tr("Turn %1").arg(this->edit()->getDescription()) : QString();
      return take<SoSFRotation>(m_rotation->getRotation(), isDrag, what);
    });
  }

 private:
  void showValue() override { m_rotation->setRotation(edit()->getFieldAs<SoSFRotation>()->getValue()); }

  VntRotationEdit* m_rotation;
};

} // namespace

void addRotationEditors(VntEditorTable& table) {
  table.push_back({"SFRotation", "Rotation", makeEditor<RotationEditor>});
  table.push_back({"SFMatrix", "Matrix", makeEditor<VntMatrixEditor>});
}
