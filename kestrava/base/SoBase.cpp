#include "kestrava/base/SoBase.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <vector>

/// Named objects. Unnamed objects never come here. Many may share a name: entering and leaving costs the same
/// however many they are.
struct SoNameDictionary {
  struct Named {
    std::vector<SoBase*> objects;  // the latest last; null where one has left
    std::size_t count = 0;
  };

  static SoNameDictionary& instance() {
    static SoNameDictionary& dictionary = *new SoNameDictionary;
    return dictionary;
  }

  void enter(SoBase* object, SbName const& name) {
    Named& named = byName[name];
    object->m_nameSlot = static_cast<unsigned>(named.objects.size());
    named.objects.push_back(object);
    ++named.count;
  }

  void leave(SoBase* object, SbName const& name) {
    auto const known = byName.find(name);
    Named& named = known->second;
    if (--named.count == 0) {
      byName.erase(known);
      return;
    }
    std::vector<SoBase*>& objects = named.objects;
    objects[object->m_nameSlot] = nullptr;
    while (!objects.back()) objects.pop_back();
    if (objects.size() > 2 * named.count + 8) {
      std::erase(objects, nullptr);
      for (std::size_t i = 0; i < objects.size(); ++i) objects[i]->m_nameSlot = static_cast<unsigned>(i);
    }
  }

  std::mutex mutex;
  std::unordered_map<SbName, Named> byName;
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
  SoNameDictionary& dictionary = SoNameDictionary::instance();
  std::lock_guard lock(dictionary.mutex);
  if (!m_name.empty()) dictionary.leave(this, m_name);
  m_name = valid;
  if (!valid.empty()) dictionary.enter(this, valid);
}

SoBase* SoBase::getNamedBase(SbName const& name, SoType type) {
  SoNameDictionary& dictionary = SoNameDictionary::instance();
  std::lock_guard lock(dictionary.mutex);
  auto const known = dictionary.byName.find(name);
  if (known == dictionary.byName.end()) return nullptr;
  std::vector<SoBase*> const& objects = known->second.objects;
  for (std::size_t i = objects.size(); i-- > 0;) {
    if (objects[i] && objects[i]->isOfType(type)) return objects[i];
  }
  return nullptr;
}

std::vector<SoBase*> SoBase::getNamedBases(SbName const& name, SoType type) {
  SoNameDictionary& dictionary = SoNameDictionary::instance();
  std::lock_guard lock(dictionary.mutex);
  std::vector<SoBase*> found;
  auto const known = dictionary.byName.find(name);
  if (known == dictionary.byName.end()) return found;
  for (SoBase* object : known->second.objects) {
    if (object && object->isOfType(type)) found.push_back(object);
  }
  return found;
}
