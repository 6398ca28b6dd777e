#include "kestrava/engines/SoEngine.h"

#include <memory>

#include "kestrava/fields/SoFieldWalk.h"
#include "kestrava/nodes/SoCopier.h"

SoEngine* SoEngine::create(SoType type) {
  return type.isDerivedFrom(getClassTypeId())
             ? static_cast<SoEngine*>(static_cast<SoFieldContainer*>(type.createInstance()))
             : nullptr;
}

SoEngine* SoEngine::copy() const { return static_cast<SoEngine*>(SoCopier(true).copy(this)); }

std::vector<SoField*> SoEngine::getOutputs() const {
  std::vector<SoField*> outputs;
  for (int i = 0; i < getNumFields(); ++i) {
    SoField* const field = getField(i);
    if (field->getFieldType() == SoField::EVENT_OUT) outputs.push_back(field);
  }
  return outputs;
}

void SoEngine::addInputsOf(SoField const* field, std::vector<SoField*>& inputs) const {
  if (field->getFieldType() != SoField::EVENT_OUT) return;
  for (int i = 0; i < getNumFields(); ++i) {
    SoField* const input = getField(i);
    if (input->getFieldType() != SoField::EVENT_OUT) inputs.push_back(input);
  }
}

void SoEngine::computeField(SoField*) {
  std::vector<SoField*> const outputs = getOutputs();
  std::vector<bool> notified;
  for (SoField* output : outputs) {
    output->clearFlag(SoField::PENDING);
    notified.push_back(output->enableNotify(false));
  }
  evaluate();
  for (std::size_t i = 0; i < outputs.size(); ++i) outputs[i]->enableNotify(notified[i]);
}

void SoEngine::inputReached(SoField* field, SoFieldWalk& walk) {
  if (field->getFieldType() == SoField::EVENT_OUT) return;
  if (m_manner == EVENTS) {
    walk.callLater(this, field);
  } else {
    inputChanged(field);
  }
}

void SoEngine::send(SoField& output) {
  output.markPending();
  if (!output.isNotifyEnabled()) return;
  if (SoFieldWalk* const walk = SoFieldWalk::getFollowing()) {
    walk->reach(&output);
  } else {
    output.spread();
  }
}

void SoEngine::sendAll() {
  for (SoField* output : getOutputs()) send(*output);
}

SoField* SoEngine::declareField(SoType type, SbName const& name, SoField::FieldType kind) {
  SoField* const field = m_runTimeFields.declare(*this, type, name, kind);
  if (field && kind == SoField::EVENT_OUT) field->markPending();
  return field;
}

void SoEngine::changed(SoNotification const& notification) {
  // A change of the engine itself comes by its fields.
  if (notification.container == this) return;
  auto const walk = std::make_shared<SoFieldWalk>();
  walk->callLater(this, nullptr);
  walk->follow();
  // What is computed may lead back to the node that is looked at: that is told once.
  if (m_telling) return;
  bool const isOwned = getRefCount() > 0;
  ref();
  m_telling = true;
  afterNotification([this, isOwned, walk] {
    walk->tell();
    m_telling = false;
    isOwned ? unref() : unrefNoDelete();
  });
}
