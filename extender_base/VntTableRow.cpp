#include "extender_base/VntTableRow.h"

#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "extender_base/VntTableEdits.h"
#include "kestrava/fields/SoMField.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

/// An edit of a value that stands alone, passed on to the row.
class VntTableRow::Edit : public VntFieldEdit {
 public:
  Edit(SoField* value, VntFieldEdit* whole, VntTableEdits& edits)
      : VntFieldEdit(value), m_whole(whole), m_edits(edits) {}

  int getRow() const { return m_row; }
  void setRow(int row) { m_row = row; }
  bool isThere() const {
    SoMField const* const field = m_edits.getField();
    return field && m_row >= 0 && m_row < field->getNum();
  }
  /// The value becomes the row's.
  void follow() {
    if (!isThere()) return;
    auto const value = clone(*getField());
    if (m_edits.getField()->getOne(m_row, *value) && !value->isSame(*getField()))
      getField()->copyFrom(*value);
  }

  QString getDescription() const override {
    return tr("value %1 of %2").arg(m_row).arg(m_whole->getDescription());
  }
  bool setText(QString const& text, QString const& what) override {
    auto const value = clone(*getField());
    SbString reason;
    if (value->set(text.toUtf8().constData(), &reason)) return setValue(*value, what);
    report(toQString(reason));
    return false;
  }
  bool preview(SoField const& value) override {
    QString const problem = m_edits.previewValue(m_row, value);
    report(problem);
    if (!problem.isEmpty()) return false;
    m_isPreviewing = true;
    getField()->copyFrom(value);
    return true;
  }
  bool isPreviewing() const override { return m_isPreviewing && m_edits.isPreviewing(); }
  void finish(QString const&) override {
    if (std::exchange(m_isPreviewing, false)) m_edits.finish();
  }
  void cancel() override {
    if (!std::exchange(m_isPreviewing, false)) return;
    m_edits.cancel();
    follow();
  }

 private:
  VntFieldEdit* m_whole;
  VntTableEdits& m_edits;
  int m_row = -1;
  bool m_isPreviewing = false;
};

VntTableRow* VntTableRow::create(VntFieldEdit* edit, VntTableEdits& edits, QWidget* parent) {
  static constexpr std::array<std::string_view, 4> TYPES = {"SFColor", "SFRotation", "SFMatrix", "SFPlane"};
  std::string name = edits.getField()->getTypeId().getName().getString();
  name.front() = 'S'; // of MFColor
  if (std::find(TYPES.begin(), TYPES.end(), name) == TYPES.end()) return nullptr;
  std::unique_ptr<SoField> value(
      static_cast<SoField*>(SoType::fromName(SbName(name.c_str())).createInstance()));
  VntEditorTable makers;
  addColorEditors(makers);
  addRotationEditors(makers);
  addVectorEditors(makers);
  auto const maker = std::find_if(makers.begin(), makers.end(),
                                  [&](VntEditorEntry const& entry) { return entry.type == name; });
  if (!value || maker == makers.end()) return nullptr;
  return new VntTableRow(edit, edits, std::move(value), maker->create, parent);
}

VntTableRow::VntTableRow(VntFieldEdit* edit, VntTableEdits& edits, std::unique_ptr<SoField> value, Maker make,
                         QWidget* parent)
    : QGroupBox(parent),
      m_value(std::move(value)),
      m_edit(std::make_unique<Edit>(m_value.get(), edit, edits)),
      m_editor(static_cast<VntEditorWidget*>(make(m_edit.get(), this))) {
  setObjectName("tableRow");
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(m_editor);
  connect(m_edit.get(), &VntFieldEdit::failed, edit, &VntFieldEdit::report);
}

VntTableRow::~VntTableRow() {
  delete m_editor;
  m_edit.reset();
}

void VntTableRow::setRow(int row) {
  if (m_edit->getRow() != row) m_editor->giveUp();
  m_edit->setRow(row);
  follow();
  m_editor->refresh();
}

void VntTableRow::follow() {
  bool const isThere = m_edit->isThere();
  m_editor->setEnabled(isThere);
  setTitle(isThere ? tr("Value %1").arg(m_edit->getRow()) : tr("No value"));
  if (!isThere) m_editor->giveUp();
  m_edit->follow();
}

void VntTableRow::giveUp() { m_editor->giveUp(); }
