#include "kestrava/fields/SoField.h"

#include <algorithm>

#include "kestrava/base/SoError.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/sensors/SoFieldSensor.h"

SoType SoField::getClassTypeId() {
  static SoType const type = SoType::createType(SoType::badType(), "Field");
  return type;
}

SoField::SoField(SoFieldContainer* container, char const* name, FieldType type,
                 std::vector<SoEnumSymbol> const* symbols)
    : m_container(container), m_flags(static_cast<std::uint16_t>(static_cast<int>(DEFAULT) | type)) {
  if (!container) return;
  m_index = static_cast<std::uint16_t>(container->addField(this, name, symbols));
  // An output has no value before it is asked for.
  if (type == EVENT_OUT && container->m_servesConnections) m_flags |= PENDING;
}

SbName SoField::getName() const {
  return m_container ? m_container->getFieldData()->getFieldName(m_index) : SbName();
}

void SoField::get(SbString& text) const {
  evaluate();
  SoOutput out;
  out.setBuffer();
  writeValue(out);
  text = SbString(out.takeBuffer());
}

bool SoField::set(char const* text, SbString* reason) {
  SoInput in;
  in.setBuffer(text);
  // Read into a field of its own first: a faulty text must leave this one as it is.
  std::unique_ptr<SoField> parsed(static_cast<SoField*>(getTypeId().createInstance()));
  if (parsed) parsed->links().parsedFor = this;
  bool ok = parsed && parsed->readValue(in);
  if (ok && !in.atEnd()) ok = in.fail("nothing after the value");
  if (!ok) {
    if (reason) {
      *reason = in.getErrorText();
    } else {
      in.postError();
    }
    return false;
  }
  takeValueOf(*parsed);
  valueChanged();
  return true;
}

std::vector<SoEnumSymbol> const& SoField::getSymbols() const {
  static std::vector<SoEnumSymbol> const none;
  SoField const* owner = m_links && m_links->parsedFor ? m_links->parsedFor : this;
  return owner->m_container ? owner->m_container->getFieldData()->getSymbols(owner->m_index) : none;
}

std::vector<SoEnumSymbol>* SoField::getOpenSymbols() const {
  return m_container ? m_container->getOpenSymbols(m_index) : nullptr;
}

void SoField::setIgnored(bool on) {
  if (on == isIgnored()) return;
  m_flags ^= IGNORED;
  tellOnly();
}

void SoField::setDefault(bool on) {
  m_flags = static_cast<std::uint16_t>(on ? m_flags | DEFAULT : m_flags & ~DEFAULT);
}

SoField::Links& SoField::links() {
  if (!m_links) m_links = std::make_unique<Links>();
  return *m_links;
}

bool SoField::copyFrom(SoField const& other) {
  other.evaluate();
  if (other.getTypeId() == getTypeId()) {
    takeValueOf(other);
    valueChanged();
    return true;
  }
  SbString text, reason;
  other.get(text);
  return set(text.c_str(), &reason);
}

bool SoField::enableNotify(bool on) {
  bool const was = isNotifyEnabled();
  m_flags = static_cast<std::uint16_t>(on ? m_flags & ~SILENT : m_flags | SILENT);
  return was;
}

void SoField::valueChanged() {
  m_flags &= static_cast<std::uint16_t>(~(DEFAULT | PENDING));
  if (isNotifyEnabled()) spread();
}

void SoField::touch() {
  if (isNotifyEnabled()) spread();
}

void SoField::addSensor(SoFieldSensor* sensor) {
  links().sensors.push_back(sensor);
  if (m_container) m_container->listenersChanged(this);
}

void SoField::removeSensor(SoFieldSensor* sensor) {
  if (!m_links) return;
  std::erase(m_links->sensors, sensor);
  if (m_container) m_container->listenersChanged(this);
}
