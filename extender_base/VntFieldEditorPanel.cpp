#include "extender_base/VntFieldEditorPanel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"
#include "vnt/VntFieldEditor.h"

VntFieldEditorPanel::VntFieldEditorPanel(QWidget* parent)
    : QWidget(parent),
      m_title(new QLabel(this)),
      m_subtitle(new QLabel(this)),
      m_state(new QWidget(this)),
      m_ignored(new QCheckBox(tr("Ignored"), m_state)),
      m_reset(new QPushButton(tr("Reset"), m_state)),
      m_source(new QLabel(m_state)),
      m_disconnect(new QPushButton(tr("Disconnect"), m_state)),
      m_area(new QScrollArea(this)),
      m_problem(new QLabel(this)) {
  buildHeader();
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(8, 6, 8, 6);
  layout->setSpacing(4);
  layout->addWidget(m_title);
  layout->addWidget(m_subtitle);
  layout->addWidget(m_state);
  layout->addWidget(m_area, 1);
  layout->addWidget(m_problem);
  m_area->setWidgetResizable(true);
  m_area->setFrameShape(QFrame::NoFrame);
  clear();
}

VntFieldEditorPanel::~VntFieldEditorPanel() {
  if (m_edit) m_edit->disconnect();
  delete m_editor; // before what it edits
}

void VntFieldEditorPanel::buildHeader() {
  QFont bold = m_title->font();
  bold.setBold(true);
  m_title->setFont(bold);
  m_title->setObjectName("fieldName");
  m_ignored->setObjectName("ignored");
  m_ignored->setToolTip(tr("The node behaves as if this field had not been set"));
  m_reset->setObjectName("reset");
  m_reset->setToolTip(tr("Gives the field its default value"));
  m_disconnect->setObjectName("disconnect");
  m_disconnect->setToolTip(tr("The field keeps its value and follows no other one"));
  m_source->setObjectName("source");
  m_problem->setObjectName("problem");
  for (QLabel* label : {m_title, m_subtitle, m_source, m_problem}) label->setTextFormat(Qt::PlainText);
  m_problem->setWordWrap(true);
  QPalette red = m_problem->palette();
  red.setColor(QPalette::WindowText, QColor(0xb0, 0x00, 0x20));
  m_problem->setPalette(red);

  auto* const row = new QHBoxLayout(m_state);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_ignored);
  row->addWidget(m_source, 1);
  row->addWidget(m_disconnect);
  row->addStretch();
  row->addWidget(m_reset);
  connect(m_ignored, &QCheckBox::clicked, this, [this](bool on) {
    if (m_edit) m_edit->setIgnored(on);
  });
  connect(m_reset, &QPushButton::clicked, this, [this] {
    if (m_edit) m_edit->resetToDefault();
  });
  connect(m_disconnect, &QPushButton::clicked, this, [this] {
    if (m_edit) m_edit->disconnectField();
  });
}

void VntFieldEditorPanel::clear() {
  if (m_editor) {
    // It may be in the middle of its own event: the field goes while a button in it is still pressed.
    QWidget* const editor = m_area->takeWidget();
    editor->disconnect();
    editor->hide();
    editor->setEnabled(false);
    if (m_edit) {
      m_edit->disconnect();
      m_edit->cancel();
      m_edit.release()->setParent(editor);
    }
    editor->setParent(nullptr);
    editor->deleteLater();
    m_editor = nullptr;
  }
  m_edit.reset();
  m_title->setText(tr("No field is selected"));
  m_subtitle->setText(tr("Select a row of the node overview to edit its field."));
  m_state->hide();
  showProblem({});
}

void VntFieldEditorPanel::setField(SoField* field, QList<VntFieldEditor*> const& makers) {
  if (m_edit && m_edit->getField() == field) return;
  clear();
  if (!field) return;
  m_edit = std::make_unique<VntFieldEdit>(field);
  connect(m_edit.get(), &VntFieldEdit::gone, this, &VntFieldEditorPanel::clear);
  connect(m_edit.get(), &VntFieldEdit::changed, this, &VntFieldEditorPanel::showState);
  connect(m_edit.get(), &VntFieldEdit::failed, this, &VntFieldEditorPanel::showProblem);
  for (VntFieldEditor* maker : makers) {
    m_editor = maker->createEditor(m_edit.get(), m_area);
    if (m_editor) break;
  }
  if (m_editor) m_area->setWidget(m_editor);
  SoFieldContainer const* const container = field->getContainer();
  QString const name = toQString(field->getName().getString());
  QString const type = toQString(field->getTypeId().getName().getString());
  m_title->setText(name.isEmpty() ? type : name);
  m_subtitle->setText(
      container ? tr("%1 of %2").arg(type, toQString(container->getTypeId().getName().getString())) : type);
  m_state->show();
  showState();
}

void VntFieldEditorPanel::showState() {
  SoField const* const field = m_edit->getField();
  if (!field) return;
  bool const isConnected = field->isConnected();
  m_ignored->setChecked(field->isIgnored());
  m_reset->setEnabled(m_edit->isEditable() && !field->isDefault());
  m_reset->setText(field->isDefault() ? tr("Default") : tr("Reset"));
  m_source->setVisible(isConnected);
  m_disconnect->setVisible(isConnected);
  if (isConnected) {
    SoField const* const source = field->getConnectedField();
    SoFieldContainer const* const container = source->getContainer();
    m_source->setText(
        tr("follows %1 of %2")
            .arg(toQString(source->getName().getString()),
                 container ? toQString(container->getTypeId().getName().getString()) : tr("the program")));
  }
  if (m_editor) m_editor->setEnabled(m_edit->isEditable());
}

void VntFieldEditorPanel::showProblem(QString const& problem) {
  m_problem->setText(problem);
  m_problem->setVisible(!problem.isEmpty());
}
