#include "kestrava/base/SoType.h"

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>

namespace {

constexpr int MAX_DEPTH = 16;
constexpr int MAX_TYPES = 16384;

struct Entry {
  SbName name;
  SoType parent;
  SoType::Factory factory = nullptr;
  int depth = 0;
  std::uint16_t ancestors[MAX_DEPTH] = {};  // ancestors[d] is the ancestor at depth d, this type included
};

// Entries are filled before the count that makes them visible grows, so readers need no lock.
struct Registry {
  std::mutex mutex;
  std::atomic<int> count{1};
  std::atomic<Entry*> entries[MAX_TYPES] = {};
  std::unordered_map<SbName, int> byName;

  Registry() { entries[0] = new Entry; }
};

// Never destroyed: types are asked for by destructors of other statics.
Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

Entry const& entry(int index) { return *registry().entries[index].load(std::memory_order_acquire); }

}  // namespace

SoType SoType::createType(SoType parent, SbName const& name, Factory factory) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  if (auto known = r.byName.find(name); known != r.byName.end()) {
    return SoType(static_cast<std::uint16_t>(known->second));
  }
  int const index = r.count.load();
  Entry const& base = *r.entries[parent.getIndex()].load();
  if (index >= MAX_TYPES || base.depth + 1 >= MAX_DEPTH) return badType();
  auto* added = new Entry(base);
  added->name = name;
  added->parent = parent;
  added->factory = factory;
  added->depth = parent.isBad() ? 0 : base.depth + 1;
  added->ancestors[added->depth] = static_cast<std::uint16_t>(index);
  r.entries[index].store(added, std::memory_order_release);
  r.byName.emplace(name, index);
  r.count.store(index + 1, std::memory_order_release);
  return SoType(static_cast<std::uint16_t>(index));
}

SoType SoType::fromName(SbName const& name) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  auto find = [&](SbName const& n) {
    auto known = r.byName.find(n);
    return known == r.byName.end() ? badType() : SoType(static_cast<std::uint16_t>(known->second));
  };
  SoType type = find(name);
  if (type.isBad() && name.str().starts_with("So")) type = find(SbName(name.str().substr(2)));
  if (type.isBad()) type = find(SbName("So" + name.str()));
  return type;
}

int SoType::getNumTypes() { return registry().count.load(std::memory_order_acquire); }

SbName SoType::getTypeName(int index) { return fromIndex(index).getName(); }

SoType SoType::fromIndex(int index) {
  return index > 0 && index < getNumTypes() ? SoType(static_cast<std::uint16_t>(index)) : badType();
}

SbName SoType::getName() const { return entry(m_index).name; }
SoType SoType::getParent() const { return entry(m_index).parent; }

bool SoType::isDerivedFrom(SoType ancestor) const {
  if (isBad() || ancestor.isBad()) return false;
  Entry const& own = entry(m_index);
  int const depth = entry(ancestor.m_index).depth;
  return depth <= own.depth && own.ancestors[depth] == ancestor.m_index;
}

bool SoType::canCreateInstance() const { return entry(m_index).factory != nullptr; }

void* SoType::createInstance() const {
  Factory const factory = entry(m_index).factory;
  return factory ? factory() : nullptr;
}
