#include "kestrava/engines/SoTypedEngine.h"

#include <string>

#include "kestrava/base/SoError.h"
#include "kestrava/engines/SoConcatenate.h"
#include "kestrava/engines/SoGate.h"
#include "kestrava/engines/SoSelectOne.h"
#include "kestrava/fields/SoMField.h"

void SoTypedEngine::fieldChanged(SoField* field) {
  if (field != &type) return;
  SoType const wanted = SoType::fromName(type.getValue());
  if (wanted == m_declared && !wanted.isBad()) return;
  // Those that follow the old fields may be all that keeps the engine.
  SoRef<SoFieldContainer> const kept(getRefCount() > 0 ? this : nullptr);
  m_runTimeFields.clear();
  m_declared = wanted;
  if (type.getValue().empty()) return;
  if (wanted.isDerivedFrom(SoField::getClassTypeId()) && declareFields(wanted)) return;
  m_runTimeFields.clear();
  m_declared = SoType::badType();
  SoDebugError::post(getTypeId().getName().c_str(), "'%s' is no type of fields that it can work on",
                     type.getValue().c_str());
}

SoFieldContainer* SoTypedEngine::makeEmpty() const {
  auto* const copy = static_cast<SoTypedEngine*>(SoEngine::makeEmpty());
  if (!m_declared.isBad()) copy->type.setValue(type.getValue());
  return copy;
}

bool SoGate::declareFields(SoType fieldType) {
  m_lets = enable.getValue();
  return declareField(fieldType, SbName("input"), SoField::NORMAL) &&
         declareField(fieldType, SbName("output"), SoField::EVENT_OUT);
}

void SoGate::inputChanged(SoField* input) {
  SoField* const output = getOutput();
  if (!output) return;
  if (input == &enable && !enable.getValue()) {
    output->evaluate(); // what has passed has passed
    return;
  }
  bool const isValue = !input || input == getInput() || input == &enable;
  if (input != &trigger && !(isValue && enable.getValue())) return;
  m_lets = true;
  send(*output);
}

void SoGate::evaluate() {
  if (std::exchange(m_lets, false)) getOutput()->copyFrom(*getInput());
}

bool SoSelectOne::declareFields(SoType fieldType) {
  if (!fieldType.isDerivedFrom(SoMField::getClassTypeId())) return false;
  std::string const name = fieldType.getName().str();
  SoType const single =
      name.starts_with("MF") ? SoType::fromName(SbName("SF" + name.substr(2))) : SoType::badType();
  return single.isDerivedFrom(SoSField::getClassTypeId()) &&
         declareField(fieldType, SbName("input"), SoField::NORMAL) &&
         declareField(single, SbName("output"), SoField::EVENT_OUT);
}

void SoSelectOne::evaluate() {
  if (SoField* const output = getOutput())
    static_cast<SoMField*>(getInput())->getOne(index.getValue(), *output);
}

bool SoConcatenate::declareFields(SoType fieldType) {
  if (!fieldType.isDerivedFrom(SoMField::getClassTypeId())) return false;
  bool ok = true;
  for (int i = 0; ok && i < NUM_INPUTS; ++i) {
    ok = declareField(fieldType, SbName("input" + std::to_string(i)), SoField::NORMAL) != nullptr;
  }
  return ok && declareField(fieldType, SbName("output"), SoField::EVENT_OUT);
}

void SoConcatenate::evaluate() {
  auto* const output = static_cast<SoMField*>(getOutput());
  if (!output) return;
  output->deleteValues(0);
  for (int i = 0; i < NUM_INPUTS; ++i) output->append(static_cast<SoMField const&>(*getInput(i)));
}
