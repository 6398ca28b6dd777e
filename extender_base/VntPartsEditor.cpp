#include "extender_base/VntPartsEditor.h"

#include <QVBoxLayout>
#include <algorithm>

#include "extender_base/VntPartEdit.h"

VntPartsEditor::VntPartsEditor(VntFieldEdit* edit, QWidget* parent) : VntEditorWidget(edit, parent) {
  static_cast<QVBoxLayout*>(layout())->addStretch(1); // all is as low as it can be, and the note right below
  connect(edit, &VntFieldEdit::changed, this, [this] {
    if (isTyping()) updateOthers();
  });
}

void VntPartsEditor::growContent() {
  auto* const lines = static_cast<QVBoxLayout*>(layout());
  lines->setStretchFactor(content(), 1);
  lines->setStretch(lines->count() - 1, 0);
}

void VntPartsEditor::updateOthers() {
  bool const isRefused =
      std::any_of(m_parts.begin(), m_parts.end(), [](VntPartEdit* part) { return part->isRefused(); });
  if (edit()->getField() && !isRefused) showValue();
}

void VntPartsEditor::watch(VntPartEdit* part, std::function<bool(bool isDrag)> take) {
  m_parts.push_back(part);
  auto const taking = [this, part, take = std::move(take)](bool isDrag) {
    if (!edit()->getField()) return;
    part->setRefused(!take(isDrag));
    updateTyping();
  };
  connect(part, &VntPartEdit::beforeChange, this, &VntPartsEditor::updateOthers);
  connect(part, &VntPartEdit::entered, this, [taking] { taking(false); });
  connect(part, &VntPartEdit::previewed, this, [taking] { taking(true); });
  connect(part, &VntPartEdit::dragFinished, this, [this] { edit()->finish(m_what); });
  connect(part, &VntPartEdit::dragCancelled, this, &VntPartsEditor::escape);
  connect(part, &VntPartEdit::rejected, edit(), &VntFieldEdit::report);
  connect(part, &VntPartEdit::pendingChanged, this, [this, part] {
    // The end of typing may be followed at once by the value that was entered: that is taken first.
    if (part->isPending())
      setTyping(true);
    else
      QMetaObject::invokeMethod(this, &VntPartsEditor::updateTyping, Qt::QueuedConnection);
  });
}

void VntPartsEditor::updateTyping() {
  setTyping(std::any_of(m_parts.begin(), m_parts.end(), [](VntPartEdit* part) { return part->isPending(); }));
}

void VntPartsEditor::escape() {
  for (VntPartEdit* part : m_parts) part->revert();
  VntEditorWidget::escape();
}
