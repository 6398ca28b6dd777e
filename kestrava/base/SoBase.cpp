#include "kestrava/base/SoBase.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "kestrava/base/SbNameEntry.h"

/// Named objects, listed with their names. Unnamed objects never come here. Many may share a name: entering and
/// leaving costs the same however many they are.
struct SoNameDictionary {
  static std::mutex& mutex() {
    static std::mutex& instance = *new std::mutex;
    return instance;
  }

  static SbNameEntry& entryOf(SbName const& name) {
    return const_cast<SbNameEntry&>(static_cast<SbNameEntry const&>(name.str()));
  }

  static void enter(SoBase* object, SbName const& name) {
    SbNameEntry& entry = entryOf(name);
    object->m_nameSlot = 0;
    if (!entry.many && !entry.only) {
      entry.only = object;
      return;
    }
    if (!entry.many) entry.many = new SbNameEntry::Many{{std::exchange(entry.only, nullptr)}, 1};
    object->m_nameSlot = static_cast<unsigned>(entry.many->objects.size());
    entry.many->objects.push_back(object);
    ++entry.many->count;
  }

  static void leave(SoBase* object, SbName const& name) {
    SbNameEntry& entry = entryOf(name);
    entry.only = nullptr;
    if (!entry.many) return;
    if (--entry.many->count == 0) {
      delete std::exchange(entry.many, nullptr);
      return;
    }
    std::vector<SoBase*>& objects = entry.many->objects;
    objects[object->m_nameSlot] = nullptr;
    while (!objects.back()) objects.pop_back();
    if (objects.size() > 2 * entry.many->count + 8) {
      std::erase(objects, nullptr);
      for (std::size_t i = 0; i < objects.size(); ++i) objects[i]->m_nameSlot = static_cast<unsigned>(i);
    }
  }

  /// The latest first, until the function answers true.
  template <class Function>
  static void search(SbName const& name, SoType type, Function const& isEnough) {
    std::lock_guard lock(mutex());
    SbNameEntry const& entry = entryOf(name);
    if (entry.only && entry.only->isOfType(type)) isEnough(entry.only);
    if (!entry.many) return;
    std::vector<SoBase*> const& objects = entry.many->objects;
    for (std::size_t i = objects.size(); i-- > 0;) {
      if (objects[i] && objects[i]->isOfType(type) && isEnough(objects[i])) return;
    }
  }
};

SoType SoBase::getClassTypeId() {
  static SoType const type = SoType::createType(SoType::badType(), "Base");
  return type;
}

SoBase::~SoBase() {
  if (!m_name.empty()) setName(SbName());
}

void SoBase::unref() const {
  if (m_refCount.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
  // A destructor releases what its object owned. Those that fall due meanwhile wait for the outermost one.
  static thread_local std::vector<SoBase const*>* due = nullptr;
  if (due) {
    due->push_back(this);
    return;
  }
  std::vector<SoBase const*> list{this};
  due = &list;
  while (!list.empty()) {
    SoBase const* next = list.back();
    list.pop_back();
    if (next->getRefCount() <= 0) delete next;
  }
  due = nullptr;
}

SbName SoBase::toValidName(SbName const& name) {
  auto const isDigit = [](char c) { return c >= '0' && c <= '9'; };
  auto const endsName = [](char c) {
    auto const u = static_cast<unsigned char>(c);
    return u <= ' ' || u == 0x7f || std::string_view("\"'\\{}[]#,+=~.").find(c) != std::string_view::npos;
  };
  std::string const& given = name.str();
  // Nearly every name is valid, and need not be looked up again.
  if (given.empty() || (!isDigit(given[0]) && std::none_of(given.begin(), given.end(), endsName))) return name;
  std::string text = given;
  std::replace_if(text.begin(), text.end(), endsName, '_');
  if (isDigit(text[0])) text.insert(text.begin(), '_');
  return SbName(text);
}

void SoBase::setName(SbName const& name) {
  SbName const valid = toValidName(name);
  if (valid == m_name) return;
  std::lock_guard lock(SoNameDictionary::mutex());
  if (!m_name.empty()) SoNameDictionary::leave(this, m_name);
  m_name = valid;
  if (!valid.empty()) SoNameDictionary::enter(this, valid);
}

SoBase* SoBase::getNamedBase(SbName const& name, SoType type) {
  SoBase* latest = nullptr;
  SoNameDictionary::search(name, type, [&](SoBase* object) { return latest = object; });
  return latest;
}

std::vector<SoBase*> SoBase::getNamedBases(SbName const& name, SoType type) {
  std::vector<SoBase*> found;
  SoNameDictionary::search(name, type, [&](SoBase* object) {
    found.push_back(object);
    return false;
  });
  return found;
}
