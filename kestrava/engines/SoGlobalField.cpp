#include "kestrava/engines/SoGlobalField.h"

#include <map>
#include <string>

#include "kestrava/base/SoError.h"
#include "kestrava/engines/SoClock.h"

namespace {

/// Each is held here.
using Objects = std::map<std::string, SoRef<SoGlobalField>>;
Objects& objects() {
  static Objects& instance = *new Objects;
  return instance;
}

char const CLOCK_NAME[] = "realTime";

} // namespace

SoGlobalField::SoGlobalField() { serveConnections(); }
SoGlobalField::~SoGlobalField() = default;

bool SoGlobalField::declareValue() {
  SoType const fieldType = SoType::fromName(type.getValue());
  SbName const wanted = name.getValue();
  if (SoField* const value = getValueField()) {
    if (value->getName() == wanted && value->getTypeId() == fieldType) return true;
    SoDebugError::post("SoGlobalField", "the global field '%s' is a %s and stays one",
                       value->getName().c_str(), value->getTypeId().getName().c_str());
    return false;
  }
  if (wanted == SoBase::toValidName(wanted) && m_fields.declare(*this, fieldType, wanted, SoField::NORMAL))
    return true;
  SoDebugError::post("SoGlobalField", "there can be no global field '%s' of the type '%s'", wanted.c_str(),
                     type.getValue().c_str());
  return false;
}

void SoGlobalField::fieldChanged(SoField* field) {
  if (field != &type && field != &name) return;
  SoField const* const value = getValueField();
  if (!value && (type.getValue().empty() || name.getValue().empty())) return;
  if (declareValue() || !value) return;
  // What it is called, and what files say, must be what it is.
  if (name.getValue() != value->getName()) name.setValue(value->getName());
  SbName const fieldType = value->getTypeId().getName();
  if (type.getValue() != fieldType) type.setValue(fieldType);
}

void SoGlobalField::listenersChanged(SoField* field) {
  if (field == getValueField() && findObject(name.getValue()) == this &&
      name.getValue().str() == CLOCK_NAME) {
    SoClock::listenersChanged();
  }
}

SoFieldContainer* SoGlobalField::makeEmpty() const {
  auto* const copy = new SoGlobalField;
  copy->type.setValue(type.getValue());
  copy->name.setValue(name.getValue());
  return copy;
}

SoGlobalField* SoGlobalField::findObject(SbName const& wanted) {
  auto const known = objects().find(wanted.str());
  if (known != objects().end()) return known->second;
  if (wanted.str() != CLOCK_NAME) return nullptr;
  SoRef<SoGlobalField> clock(new SoGlobalField);
  clock->type.setValue(SbName("SFTime"));
  clock->name.setValue(wanted);
  objects().emplace(wanted.str(), clock);
  return clock;
}

SoField* SoGlobalField::find(SbName const& wanted) {
  SoGlobalField* const object = findObject(wanted);
  return object ? object->getValueField() : nullptr;
}

SoField* SoGlobalField::create(SbName const& wanted, SoType fieldType) {
  if (SoField* const known = find(wanted)) {
    if (known->getTypeId() == fieldType) return known;
    SoDebugError::post("SoGlobalField::create", "the global field '%s' is a %s, not a %s", wanted.c_str(),
                       known->getTypeId().getName().c_str(), fieldType.getName().c_str());
    return nullptr;
  }
  SoRef<SoGlobalField> const object(new SoGlobalField);
  object->enableNotify(false);
  object->name.setValue(wanted);
  object->type.setValue(fieldType.getName());
  object->enableNotify(true);
  if (!object->getValueField()) return nullptr;
  objects().emplace(wanted.str(), object);
  return object->getValueField();
}

SoFieldContainer* SoGlobalField::getMeant() {
  SoField* const value = getValueField();
  if (!value) return this;
  SoGlobalField* const known = findObject(name.getValue());
  if (!known) {
    objects().emplace(name.getValue().str(), SoRef<SoGlobalField>(this));
    return this;
  }
  // One of another type stays apart: the connection is refused or converts.
  return known->getValueField()->getTypeId() == value->getTypeId() ? known : this;
}

std::vector<SbName> SoGlobalField::getNames() {
  findObject(SbName(CLOCK_NAME));
  std::vector<SbName> names;
  for (auto const& [text, object] : objects()) names.emplace_back(text);
  return names;
}

void SoGlobalField::remove(SbName const& unwanted) {
  if (unwanted.str() != CLOCK_NAME) objects().erase(unwanted.str());
}
