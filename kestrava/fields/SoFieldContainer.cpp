#include "kestrava/fields/SoFieldContainer.h"

#include <mutex>
#include <optional>
#include <unordered_map>

#include "kestrava/fields/SoFieldWalk.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/sensors/SoNodeSensor.h"

namespace {

/// Net names are rare: they live beside the objects, not in them.
std::unordered_map<SoFieldContainer const*, SbName>& netNames() {
  static auto& names = *new std::unordered_map<SoFieldContainer const*, SbName>;
  return names;
}
std::mutex netNameMutex;
std::atomic<bool> anyNetName{false};

}  // namespace

SoType SoFieldContainer::getClassTypeId() {
  static SoType const type = SoType::createType(SoBase::getClassTypeId(), "FieldContainer");
  return type;
}

SoFieldData& SoFieldContainer::getClassFieldData() const {
  static SoFieldData data;
  return data;
}

SoFieldContainer::~SoFieldContainer() {
  for (int i = m_auditors.getLength(); i-- > 0; i = std::min(i, m_auditors.getLength())) {
    if (m_auditors.getKind(i) == SoAuditorList::SENSOR) {
      static_cast<SoNodeSensor*>(m_auditors.getObject(i))->attachedObjectDies();
    }
  }
  if (anyNetName) setNetName(SbName());
}

int SoFieldContainer::addField(SoField* field, char const* name, std::vector<SoEnumSymbol> const* symbols) {
  int const index = m_fieldCursor++;
  SoFieldData& data = getClassFieldData();
  if (index < data.getNumFields()) return index;
  // The first instance of its class. Others may be under construction in other threads: the same field in
  // the same place is entered once.
  static std::mutex mutex;
  std::lock_guard lock(mutex);
  if (index == data.getNumFields()) {
    data.m_entries.push_back({SbName(name), reinterpret_cast<char*>(field) - reinterpret_cast<char*>(this),
                              symbols ? *symbols : std::vector<SoEnumSymbol>()});
  }
  return index;
}

void SoFieldContainer::adoptField(SoField* field, SbName const& name) {
  field->m_container = this;
  field->m_index = static_cast<std::uint16_t>(addField(field, name.c_str(), nullptr));
}

void SoFieldContainer::adoptField(SoField* field, SbName const& name, SoFieldData& table) {
  field->m_container = this;
  field->m_index = static_cast<std::uint16_t>(table.getNumFields());
  table.m_entries.push_back({name, reinterpret_cast<char*>(field) - reinterpret_cast<char*>(this), {}});
}

SoField* SoFieldContainer::getField(SbName const& name) const {
  int const index = getFieldData()->getIndex(name);
  return index < 0 ? nullptr : getField(index);
}

bool SoFieldContainer::set(char const* fieldsAndValues) {
  SoInput in;
  in.setBuffer(fieldsAndValues);
  while (!in.atEnd()) {
    SbString name;
    if (!in.readWord(name)) break;
    SoField* field = getField(SbName(name));
    if (!field) {
      in.failText("'" + name.str() + "' is not a field of " + getTypeId().getName().str());
      break;
    }
    // Read into a field of its own first: a faulty text must leave this one as it is.
    std::unique_ptr<SoField> const parsed(static_cast<SoField*>(field->getTypeId().createInstance()));
    if (!parsed) {
      in.failText("the field '" + name.str() + "' can not be set from a text");
      break;
    }
    parsed->links().parsedFor = field;
    if (!parsed->readValue(in) || in.hasFailed()) break;
    field->takeValueOf(*parsed);
    field->valueChanged();
  }
  in.postError();
  return !in.hasFailed();
}

bool SoFieldContainer::fieldsAreEqual(SoFieldContainer const& other) const {
  if (getTypeId() != other.getTypeId() || getNumFields() != other.getNumFields()) return false;
  for (int i = 0; i < getNumFields(); ++i) {
    if (!getField(i)->isSame(*other.getField(i))) return false;
  }
  return true;
}

void SoFieldContainer::copyFieldValues(SoFieldContainer const& from, bool copyConnections) {
  bool const notifyBefore = enableNotify(false);
  // The first fields of an object may decide on which ones follow.
  for (int i = 0; i < from.getNumFields() && i < getNumFields(); ++i) {
    SoField* source = from.getField(i);
    SoField* field = getField(i);
    bool const wasDefault = source->isDefault();
    field->copyFrom(*source);
    field->setDefault(wasDefault);
    field->setIgnored(source->isIgnored());
    if (copyConnections && source->isConnected()) field->connectFrom(source->getConnectedField());
  }
  enableNotify(notifyBefore);
  touch();
}

void SoFieldContainer::connectByDefault(SoField& field, SoField& source) {
  if (!field.connectFrom(&source)) return;
  field.m_flags |= SoField::OWN_CONNECTION | SoField::DEFAULT;
}

SoFieldContainer* SoFieldContainer::makeEmpty() const {
  return static_cast<SoFieldContainer*>(getTypeId().createInstance());
}

SbName SoFieldContainer::getNetName() const {
  if (!anyNetName) return SbName();
  std::lock_guard lock(netNameMutex);
  auto known = netNames().find(this);
  return known == netNames().end() ? SbName() : known->second;
}

void SoFieldContainer::setNetName(SbName const& name) {
  std::lock_guard lock(netNameMutex);
  if (name.empty()) {
    netNames().erase(this);
  } else {
    netNames()[this] = name;
    anyNetName = true;
  }
}

bool SoFieldContainer::enableNotify(bool on) { return std::exchange(m_notifyEnabled, on); }

namespace {

struct Deferred {
  int depth;  // of the notification after which it is called
  std::function<void()> function;
};
thread_local int notificationDepth = 0;
thread_local std::vector<Deferred> deferred;

/// Counts notifications inside notifications.
struct NotificationDepth {
  NotificationDepth() { ++notificationDepth; }
  ~NotificationDepth() {
    --notificationDepth;
    while (!deferred.empty() && deferred.back().depth >= notificationDepth) {
      auto const function = std::move(deferred.back().function);
      deferred.pop_back();
      function();
    }
  }
};

}  // namespace

void SoFieldContainer::afterNotification(std::function<void()> function) {
  deferred.push_back({notificationDepth, std::move(function)});
}

void SoFieldContainer::removeAuditor(void* auditor, SoAuditorList::Kind kind) {
  if (kind != SoAuditorList::SENSOR) SoNodeSensor::Dispatch::makePaths();
  m_auditors.remove(auditor, kind);
}

namespace {

std::atomic<std::uint64_t> silentChanges{0};

bool mayChangeWays(SoNotification const& notification) {
  SoField const* const field = notification.field;
  return !field || field->isOfType(SoSFNode::getClassTypeId()) || field->isOfType(SoMFNode::getClassTypeId()) ||
         field->isOfType(SoMFUniformShaderParameter::getClassTypeId());
}

void countSilent(SoNotification const& notification) {
  if (mayChangeWays(notification)) silentChanges.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

std::uint64_t SoFieldContainer::getSilentChanges() { return silentChanges.load(std::memory_order_relaxed); }

void SoFieldContainer::notify(SoNotification const& notification) {
  NotificationDepth const depth;  // what waits for this notification is called even when nobody is told
  if (!m_notifyEnabled) return countSilent(notification);
  static std::atomic<std::uint32_t> lastVisit{0};
  std::uint32_t const visit = ++lastVisit;

  // One list a thread, used as a stack by changes made inside changes.
  static thread_local std::vector<SoNodeSensor::Dispatch::Reached> reached;
  size_t const base = reached.size();
  SoNodeSensor::Dispatch dispatch(reached);
  std::optional<SoFieldWalk> referrers;  // fields that are watched and refer to something that changed

  m_visit = visit;
  reached.push_back({this, -1});
  for (size_t i = base; i < reached.size(); ++i) {
    SoFieldContainer* const container = reached[i].container;
    container->changed(notification);
    SoAuditorList const& auditors = container->m_auditors;
    for (int k = 0; k < auditors.getLength(); ++k) {
      void* const auditor = auditors.getObject(k);
      SoFieldContainer* next = nullptr;
      switch (auditors.getKind(k)) {
        case SoAuditorList::PARENT: next = static_cast<SoNode*>(auditor); break;
        case SoAuditorList::FIELD: {
          auto* field = static_cast<SoField*>(auditor);
          next = field->getContainer();
          if (field->isWatched()) (referrers ? *referrers : referrers.emplace()).reach(field);
          break;
        }
        case SoAuditorList::SENSOR:
          dispatch.add(static_cast<SoNodeSensor*>(auditor), static_cast<int>(i - base));
          break;
        case SoAuditorList::PATH: break;
      }
      if (!next || next->m_visit == visit) continue;
      if (!next->m_notifyEnabled) {
        countSilent(notification);
        continue;
      }
      next->m_visit = visit;
      reached.push_back({next, static_cast<int>(i - base)});
    }
  }
  if (referrers) referrers->tellSensors();
  dispatch.run(notification);
}
