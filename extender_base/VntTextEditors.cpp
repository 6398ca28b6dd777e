// Editors for values that are best entered as text.

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "extender_base/VntTextBox.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoSFArray.h"
#include "kestrava/fields/SoSFBufferObject.h"
#include "kestrava/fields/SoSFFieldContainer.h"
#include "kestrava/fields/SoSFName.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/fields/SoSFTrigger.h"
#include "kestrava/nodes/SoGroup.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

namespace {

/// A box with the value as text.
class TextEditor : public VntEditorWidget {
 public:
  TextEditor(VntFieldEdit* edit, bool allowsLines, QWidget* parent)
      : VntEditorWidget(edit, parent), m_box(new VntTextBox(allowsLines, this)) {
    m_box->setObjectName("text");
    content()->addWidget(m_box, 1);
    content()->addStretch(); // several lines take the free space, one leaves it here
    setFocusProxy(m_box);
    connect(m_box, &VntTextBox::edited, this, [this] {
      setTyping(m_box->isModified());
      textEdited();
    });
    connect(m_box, &VntTextBox::entered, this, [this] {
      if (isTyping() && this->edit()->getField() && take(m_box->text())) setTyping(false);
    });
  }

 protected:
  virtual QString fieldText() const = 0;
  /// False when the text can not be the value, which has been reported.
  virtual bool take(QString const& text) = 0;
  virtual void textEdited() {}
  void showValue() override { m_box->setText(fieldText()); }
  QString valueText() const override { return isShort() ? VntEditorWidget::valueText() : tr("another text"); }
  VntTextBox* box() const { return m_box; }

 private:
  bool isShort() const { return fieldText().size() < 10000; }
  VntTextBox* m_box;
};

/// Any value, in the form that files use.
class AnyValueEditor : public TextEditor {
 public:
  AnyValueEditor(VntFieldEdit* edit, QWidget* parent) : TextEditor(edit, true, parent) {
    box()->setToolTip(tr("The value as it stands in files"));
  }

 private:
  QString fieldText() const override {
    SbString text;
    edit()->getField()->get(text);
    return toQString(text);
  }
  bool take(QString const& text) override { return edit()->setText(text); }
};

/// For strings and names: what is typed is the value, quotes and all.
template <class Field> class PlainTextEditor : public TextEditor {
 public:
  PlainTextEditor(VntFieldEdit* edit, QWidget* parent)
      : TextEditor(edit, std::is_same_v<Field, SoSFString>, parent) {}

 protected:
  QString fieldText() const override { return toText(edit()->template getFieldAs<Field>()->getValue()); }

 private:
  static QString toText(SbString const& text) { return toQString(text); }
  static QString toText(SbName const& name) { return toQString(name.toString()); }

  bool take(QString const& text) override {
    QString const before = fieldText();
    if (!edit()->template set<Field>(typename Field::ValueType(toSbString(text)))) return false;
    if (!edit()->getField()) return true;
    QString const now = fieldText();
    if (now == text) return true;
    // Its node has had a word in it.
    if (now != before)
      edit()->report(tr("It became \"%1\".").arg(now));
    else
      edit()->report(tr("\"%1\" is not taken; the node keeps \"%2\".").arg(text, now));
    return now != before;
  }
};

using StringEditor = PlainTextEditor<SoSFString>;

/// Says also what a node would be called by that name.
class NameEditor : public PlainTextEditor<SoSFName> {
 public:
  NameEditor(VntFieldEdit* edit, QWidget* parent)
      : PlainTextEditor(edit, parent), m_altered(new QLabel(this)) {
    m_altered->setObjectName("alteredName");
    m_altered->setTextFormat(Qt::PlainText);
    m_altered->setWordWrap(true);
    m_altered->setToolTip(tr("Names of nodes have no white space, quotes, braces, or digit in front"));
    content()->insertWidget(1, m_altered);
  }

 private:
  void showValue() override {
    TextEditor::showValue();
    textEdited();
  }
  void textEdited() override {
    SbName const name(toSbString(box()->text()));
    SbName const valid = SoBase::toValidName(name);
    m_altered->setVisible(!(name == valid));
    m_altered->setText(tr("as the name of a node it becomes \"%1\"").arg(toQString(valid.toString())));
  }

  QLabel* m_altered;
};

/// For fields that refer to something: what it is, in short.
class ReferenceEditor : public VntEditorWidget {
 public:
  ReferenceEditor(VntFieldEdit* edit, QWidget* parent)
      : VntEditorWidget(edit, parent), m_summary(new QLabel(this)) {
    m_summary->setObjectName("summary");
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    content()->addWidget(m_summary);
    content()->addStretch();
  }

  static bool isFor(SoField const& field) {
    for (SoType const type :
         {SoSFNode::getClassTypeId(), SoSFFieldContainer::getClassTypeId(), SoSFPath::getClassTypeId(),
          SoSFBufferObject::getClassTypeId(), SoSFArray::getClassTypeId()}) {
      if (field.isOfType(type)) return true;
    }
    return false;
  }

 private:
  void showValue() override { m_summary->setText(summary()); }
  QString valueText() const override { return summary(); }
  QString summary() const;
  static QString nameOf(SoFieldContainer const& container) {
    QString const type = toQString(container.getTypeId().getName().getString());
    QString const name = toQString(container.getName().getString());
    return name.isEmpty() ? type : tr("%1 \"%2\"", "type and name of a node").arg(type, name);
  }
  static QString containerSummary(SoFieldContainer const* container);
  static QString pathSummary(SoPath const* path);

  QLabel* m_summary;
};

QString ReferenceEditor::containerSummary(SoFieldContainer const* container) {
  if (!container) return tr("none (NULL)");
  QString const name = nameOf(*container);
  if (!container->isOfType(SoGroup::getClassTypeId())) return name;
  int const children = static_cast<SoGroup const*>(container)->getNumChildren();
  return children == 1 ? tr("%1, 1 child").arg(name) : tr("%1, %2 children").arg(name).arg(children);
}

QString ReferenceEditor::pathSummary(SoPath const* path) {
  if (!path) return tr("none (NULL)");
  if (path->getLength() == 0) return tr("an empty path");
  if (path->getLength() == 1) return tr("a path of %1 alone").arg(nameOf(*path->getHead()));
  return tr("a path of %1 nodes from %2 to %3")
      .arg(QString::number(path->getLength()), nameOf(*path->getHead()), nameOf(*path->getTail()));
}

QString ReferenceEditor::summary() const {
  SoField const* const field = edit()->getField();
  if (field->isOfType(SoSFNode::getClassTypeId()))
    return containerSummary(static_cast<SoSFNode const*>(field)->getValue());
  if (field->isOfType(SoSFFieldContainer::getClassTypeId()))
    return containerSummary(static_cast<SoSFFieldContainer const*>(field)->getValue());
  if (field->isOfType(SoSFPath::getClassTypeId()))
    return pathSummary(static_cast<SoSFPath const*>(field)->getValue());
  if (field->isOfType(SoSFArray::getClassTypeId())) {
    SbVec3i32 const size = static_cast<SoSFArray const*>(field)->getSize();
    return tr("%1 x %2 x %3 numbers").arg(size[0]).arg(size[1]).arg(size[2]);
  }
  SoBufferObject const* const buffer = static_cast<SoSFBufferObject const*>(field)->getValue();
  return buffer ? tr("a buffer of %1 bytes").arg(locale().toString(qulonglong(buffer->getSize())))
                : tr("none (NULL)");
}

/// For fields without a value.
class TriggerEditor : public VntEditorWidget {
 public:
  TriggerEditor(VntFieldEdit* edit, QWidget* parent) : VntEditorWidget(edit, parent) {
    auto* const button = new QPushButton(tr("Trigger"), this);
    button->setObjectName("trigger");
    button->setToolTip(tr("Tells all that follow this field; there is nothing to undo"));
    content()->addWidget(button, 0, Qt::AlignLeft);
    content()->addStretch();
    setFocusProxy(button);
    connect(button, &QPushButton::clicked, this, [this] {
      if (SoField* const field = this->edit()->getField()) field->touch();
    });
  }

 private:
  void showValue() override {}
};

QWidget* makeAnyEditor(VntFieldEdit* edit, QWidget* parent) {
  SoField const& field = *edit->getField();
  if (ReferenceEditor::isFor(field)) return makeEditor<ReferenceEditor>(edit, parent);
  if (field.isOfType(SoSFTrigger::getClassTypeId())) return makeEditor<TriggerEditor>(edit, parent);
  static VntEditorTable const others = [] {
    VntEditorTable table;
    addOtherNumberEditors(table);
    addOtherVectorEditors(table);
    return table;
  }();
  for (VntEditorEntry const& other : others) {
    if (field.isOfType(SoType::fromName(SbName(other.type)))) return other.create(edit, parent);
  }
  return makeEditor<AnyValueEditor>(edit, parent);
}

} // namespace

void addTextEditors(VntEditorTable& table) {
  table.push_back({"SField", "Any value", makeAnyEditor});
  table.push_back({"SFString", "Text", makeEditor<StringEditor>});
  table.push_back({"SFName", "Name", makeEditor<NameEditor>});
}
