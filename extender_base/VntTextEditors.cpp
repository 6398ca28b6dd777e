// Editors for values that are best entered as text.

#include <QLineEdit>
#include <QVBoxLayout>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

namespace {

/// Any value, in the form that files use.
class AnyValueEditor : public VntEditorWidget {
 public:
  AnyValueEditor(VntFieldEdit* edit, QWidget* parent)
      : VntEditorWidget(edit, parent), m_line(new QLineEdit(this)) {
    content()->addWidget(m_line);
    setFocusProxy(m_line);
    watchTyping(m_line);
    connect(m_line, &QLineEdit::editingFinished, this, &AnyValueEditor::enter);
  }

 private:
  void showValue() override {
    SbString text;
    edit()->getField()->get(text);
    m_line->setText(toQString(text));
  }
  void enter() {
    if (!isTyping()) return;
    if (edit()->setText(m_line->text())) setTyping(false);
  }

  QLineEdit* m_line;
};

} // namespace

void addTextEditors(VntEditorTable& table) {
  table.push_back({"SField", "Any value", makeEditor<AnyValueEditor>});
}
