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
  if (container) m_index = static_cast<std::uint16_t>(container->addField(this, name, symbols));
}

SoField::~SoField() {
  if (!m_links) return;
  while (!m_links->sensors.empty()) {
    SoFieldSensor* const sensor = m_links->sensors.back();
    m_links->sensors.pop_back();
    sensor->attachedObjectDies();
  }
  // The value is gone with the class that held it: a follower that has not fetched it keeps its last one.
  for (SoField* follower : m_links->followers) {
    follower->m_links->source = nullptr;
    follower->m_flags &= static_cast<std::uint16_t>(~PENDING);
  }
  if (m_links->source) std::erase(m_links->source->m_links->followers, this);
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
  if (isNotifyEnabled()) spread();
}

void SoField::setDefault(bool on) {
  m_flags = static_cast<std::uint16_t>(on ? m_flags | DEFAULT : m_flags & ~DEFAULT);
}

SoField::Links& SoField::links() {
  if (!m_links) m_links = std::make_unique<Links>();
  return *m_links;
}

bool SoField::follows(SoField const* other) const {
  for (SoField const* f = this; f; f = f->getConnectedField()) {
    if (f == other) return true;
  }
  return false;
}

bool SoField::connectFrom(SoField* source) {
  if (!source || source->follows(this)) {
    SoDebugError::post("SoField::connectFrom", "connecting '%s' would close a loop", getName().c_str());
    return false;
  }
  if (source->getTypeId() != getTypeId()) {
    SbString text, reason;
    source->get(text);
    std::unique_ptr<SoField> probe(static_cast<SoField*>(getTypeId().createInstance()));
    if (!probe || !probe->set(text.c_str(), &reason)) {
      SoDebugError::post("SoField::connectFrom", "a %s can not follow a %s",
                         getTypeId().getName().c_str(), source->getTypeId().getName().c_str());
      return false;
    }
  }
  disconnect();
  links().source = source;
  source->links().followers.push_back(this);
  m_flags = static_cast<std::uint16_t>((m_flags | PENDING) & ~DEFAULT);
  if (isNotifyEnabled()) spread();
  return true;
}

void SoField::disconnect() {
  if (!isConnected()) return;
  evaluate();
  auto& followers = m_links->source->m_links->followers;
  followers.erase(std::find(followers.begin(), followers.end(), this));
  m_links->source = nullptr;
  if (isNotifyEnabled()) spread();
}

void SoField::fetch() {
  m_flags &= static_cast<std::uint16_t>(~PENDING);
  SoField* source = getConnectedField();
  if (!source) return;
  source->evaluate();
  if (source->getTypeId() == getTypeId()) {
    takeValueOf(*source);
    return;
  }
  SbString text, reason;
  source->get(text);
  bool const notify = enableNotify(false);
  set(text.c_str(), &reason);
  enableNotify(notify);
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

void SoField::spread() {
  if (m_links) {
    // By index: a callback may connect, disconnect, attach or detach.
    for (size_t i = 0; i < m_links->followers.size(); ++i) {
      SoField* follower = m_links->followers[i];
      follower->m_flags = static_cast<std::uint16_t>((follower->m_flags | PENDING) & ~DEFAULT);
      if (follower->isNotifyEnabled()) follower->spread();
    }
    notifySensors();
  }
  if (!m_container) return;
  m_container->fieldChanged(this);
  m_container->notify(SoNotification{SoNotification::UNSPECIFIED, m_container, this});
}

void SoField::notifySensors() {
  if (!m_links) return;
  for (size_t i = m_links->sensors.size(); i-- > 0;) {
    if (i < m_links->sensors.size()) m_links->sensors[i]->fieldNotified(this);
  }
}

void SoField::addSensor(SoFieldSensor* sensor) { links().sensors.push_back(sensor); }

void SoField::removeSensor(SoFieldSensor* sensor) {
  if (m_links) std::erase(m_links->sensors, sensor);
}
