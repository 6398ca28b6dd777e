#include "vnt/VntFieldEdit.h"

#include <QList>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <utility>

#include "kestrava/io/SoDB.h"
#include "kestrava/nodes/SoNode.h"
#include "vnt/QtText.h"
#include "vnt/VntCommand.h"
#include "vnt/VntFieldHandle.h"
#include "vnt/VntServices.h"

namespace {

using Action = std::function<void(SoField&)>;

// Never destroyed: edits may outlive the library's statics.
auto& allEdits() {
  static auto& all = *new QList<QPointer<VntFieldEdit>>;
  return all;
}

/// An undo in a drag gives the drag up. Its end would otherwise be a step from a value that the history has left.
void endDragsOf(SoField const* field) {
  for (QPointer<VntFieldEdit> const& edit : QList<QPointer<VntFieldEdit>>(allEdits())) {
    if (edit && edit->getField() == field) edit->cancel();
  }
}

/// One step on a field. It enters the history when its work is done already.
class FieldCommand : public VntCommand {
 public:
  FieldCommand(SoField* field, QString const& text, Action undo, Action redo)
      : m_field(field), m_undo(std::move(undo)), m_redo(std::move(redo)) {
    setText(toSbString(text));
  }
  void execute() override {}
  void undo() override { run(m_undo); }
  void redo() override { run(m_redo); }

 private:
  void run(Action const& action) const {
    SoField* const field = m_field.get();
    if (!field) return;
    endDragsOf(field);
    SoDB::writelock();
    action(*field);
    SoDB::writeunlock();
  }

  VntFieldHandle m_field;
  Action m_undo, m_redo;
};

/// Value and default flag change in one notification: whoever hears of it sees both.
void assign(SoField& field, SoField const& value, bool isDefault) {
  bool const notifies = field.enableNotify(false);
  field.copyFrom(value);
  field.setDefault(isDefault);
  field.enableNotify(notifies);
  field.touch();
}

Action assigning(std::shared_ptr<SoField const> value, bool isDefault) {
  return [value = std::move(value), isDefault](SoField& field) { assign(field, *value, isDefault); };
}

} // namespace

VntFieldEdit::VntFieldEdit(SoField* field, QObject* parent)
    : QObject(parent), m_field(field), m_sensor(fieldChangedCB, this) {
  allEdits() << this;
  if (!field) return;
  // The field's value is not read inside its own notification: the sensor only notes that there is a new one.
  m_sensor.setPriority(0);
  m_sensor.setDeleteCallback(fieldDiesCB, this);
  m_sensor.attach(field);
}

VntFieldEdit::~VntFieldEdit() {
  allEdits().removeOne(this);
  m_sensor.setDeleteCallback(nullptr, nullptr);
  if (m_before && m_field) assign(*m_field, *m_before, m_wasDefault);
}

void VntFieldEdit::fieldChangedCB(void* edit, SoSensor*) {
  auto* const self = static_cast<VntFieldEdit*>(edit);
  if (std::exchange(self->m_tellingQueued, true)) return;
  // Of a field that changes all the time an editor shows no more than the eye takes for motion: drawing costs
  // the host time.
  constexpr qint64 INTERVAL = 40;
  qint64 const wait = self->m_told.isValid() ? INTERVAL - self->m_told.elapsed() : 0;
  auto const tell = [self] {
    self->m_told.start();
    self->tellChanged();
  };
  if (wait > 0)
    QTimer::singleShot(static_cast<int>(wait), Qt::PreciseTimer, self, tell);
  else
    QMetaObject::invokeMethod(self, tell, Qt::QueuedConnection);
}

void VntFieldEdit::fieldDiesCB(void* edit, SoSensor*) {
  auto* const self = static_cast<VntFieldEdit*>(edit);
  self->m_field = nullptr;
  self->m_before.reset();
  Q_EMIT self->gone();
}

void VntFieldEdit::tellChanged() {
  if (!std::exchange(m_tellingQueued, false) || !m_field) return;
  Q_EMIT changed();
}

QString VntFieldEdit::getDescription() const {
  if (!m_field) return {};
  SoFieldContainer const* const container = m_field->getContainer();
  if (!container) return tr("a value of type %1").arg(toQString(m_field->getTypeId().getName().getString()));
  QString const type = toQString(container->getTypeId().getName().getString());
  QString const name = toQString(container->getName().getString());
  QString const what = name.isEmpty() ? type : tr("%1 \"%2\"", "type and name of a node").arg(type, name);
  return tr("%1 of %2", "a field of a node").arg(toQString(m_field->getName().getString()), what);
}

bool VntFieldEdit::isEditable() const {
  if (!m_field || m_field->isConnected()) return false;
  SoField::FieldType const kind = m_field->getFieldType();
  return kind != SoField::READ_ONLY && kind != SoField::EVENT_OUT;
}

std::unique_ptr<SoField> VntFieldEdit::clone(SoField const& field) {
  std::unique_ptr<SoField> copy(static_cast<SoField*>(field.getTypeId().createInstance()));
  if (copy) copy->copyFrom(field);
  return copy;
}

void VntFieldEdit::push(std::unique_ptr<VntCommand> command) {
  // Without a session there is no history: the change stays, only it can not be taken back.
  if (VntServices* services = VntServices::getInstance()) services->execute(command.release());
  m_tellingQueued = true;
  tellChanged();
}

void VntFieldEdit::execute(std::unique_ptr<VntCommand> command) {
  if (VntServices* services = VntServices::getInstance()) {
    services->execute(command.release());
  } else {
    command->execute();
  }
  m_tellingQueued = true;
  tellChanged();
}

bool VntFieldEdit::setValue(SoField const& value, QString const& what) {
  if (!preview(value)) return false;
  finish(what);
  return true;
}

bool VntFieldEdit::setText(QString const& text, QString const& what) {
  bool const alone = !m_before;
  if (!begin()) return false;
  SbString reason;
  if (!m_field->set(text.toUtf8().constData(), &reason)) {
    if (alone) m_before.reset();
    Q_EMIT failed(toQString(reason));
    return false;
  }
  Q_EMIT failed({});
  finish(what);
  return true;
}

bool VntFieldEdit::begin() {
  if (!m_field) return false;
  if (!isEditable()) {
    Q_EMIT failed(m_field->isConnected()
                      ? tr("The field follows %1; disconnect it first.")
                            .arg(toQString(m_field->getConnectedField()->getName().getString()))
                      : tr("Only its node sets this field."));
    return false;
  }
  if (!m_before) {
    m_before = clone(*m_field);
    m_wasDefault = m_field->isDefault();
  }
  return true;
}

bool VntFieldEdit::preview(SoField const& value) {
  bool const alone = !m_before;
  if (!begin()) return false;
  SoDB::writelock();
  bool const taken = m_field->copyFrom(value);
  SoDB::writeunlock();
  if (!taken && alone) m_before.reset();
  Q_EMIT failed(taken ? QString() : tr("The value is none for a field of this type."));
  return taken;
}

void VntFieldEdit::finish(QString const& what) {
  if (!m_before || !m_field) return;
  std::shared_ptr<SoField const> const before = std::move(m_before);
  if (before->isSame(*m_field)) {
    // Nothing was changed after all; then neither was the default.
    if (m_wasDefault != m_field->isDefault()) assign(*m_field, *before, m_wasDefault);
    m_tellingQueued = true;
    return tellChanged();
  }
  push(std::make_unique<FieldCommand>(m_field, what.isEmpty() ? tr("Set %1").arg(getDescription()) : what,
                                      assigning(before, m_wasDefault), assigning(clone(*m_field), false)));
}

void VntFieldEdit::cancel() {
  if (!m_before || !m_field) return;
  std::unique_ptr<SoField> const before = std::move(m_before);
  assign(*m_field, *before, m_wasDefault);
  Q_EMIT failed({});
  m_tellingQueued = true;
  tellChanged();
}

void VntFieldEdit::setIgnored(bool on) {
  if (!m_field || m_field->isIgnored() == on) return;
  m_field->setIgnored(on);
  push(std::make_unique<FieldCommand>(
      m_field, (on ? tr("Ignore %1") : tr("Do not ignore %1")).arg(getDescription()),
      [on](SoField& field) { field.setIgnored(!on); }, [on](SoField& field) { field.setIgnored(on); }));
}

void VntFieldEdit::disconnectField() {
  if (!m_field || !m_field->isConnected()) return;
  cancel();
  VntFieldHandle const source(m_field->getConnectedField());
  // An engine lives only as long as it is followed; a node that goes has its own reasons.
  SoRef<SoFieldContainer> engine(m_field->getConnectedField()->getContainer());
  if (engine && engine->isOfType(SoNode::getClassTypeId())) engine.reset();
  m_field->evaluate();
  m_field->disconnect();
  push(std::make_unique<FieldCommand>(
      m_field, tr("Disconnect %1").arg(getDescription()),
      [source, engine](SoField& field) {
        if (SoField* from = source.get()) field.connectFrom(from);
      },
      [](SoField& field) {
        field.evaluate();
        field.disconnect();
      }));
}

void VntFieldEdit::resetToDefault() {
  if (!m_field || m_field->isDefault() || !isEditable()) return;
  cancel();
  if (m_field->isDefault()) return; // a drag was all that there was
  SoFieldContainer const* const container = m_field->getContainer();
  SoRef<SoFieldContainer> fresh;
  if (container && container->getTypeId().canCreateInstance())
    fresh = static_cast<SoFieldContainer*>(container->getTypeId().createInstance());
  SoField const* const value = fresh ? fresh->getField(m_field->getName()) : nullptr;
  if (!value || value->getTypeId() != m_field->getTypeId()) {
    Q_EMIT failed(tr("Nothing is known about the default of this field."));
    return;
  }
  std::shared_ptr<SoField const> const before = clone(*m_field);
  std::shared_ptr<SoField const> const wanted = clone(*value);
  assign(*m_field, *wanted, true);
  push(std::make_unique<FieldCommand>(m_field, tr("Reset %1 to the default").arg(getDescription()),
                                      assigning(before, false), assigning(wanted, true)));
}
