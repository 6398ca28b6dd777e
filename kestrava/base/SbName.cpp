#include "kestrava/base/SbName.h"

#include <mutex>
#include <unordered_set>

namespace {

struct Hash {
  using is_transparent = void;
  size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

struct Pool {
  std::mutex mutex;
  std::unordered_set<std::string, Hash, std::equal_to<>> entries;  // node based: addresses are stable
};

// Never destroyed: names held by statics of other libraries stay valid until the process ends.
Pool& pool() {
  static Pool& instance = *new Pool;
  return instance;
}

}  // namespace

std::string const* SbName::intern(std::string_view text) {
  if (text.empty()) return emptyEntry();
  Pool& p = pool();
  std::lock_guard lock(p.mutex);
  auto found = p.entries.find(text);
  if (found == p.entries.end()) found = p.entries.emplace(text).first;
  return &*found;
}

std::string const* SbName::emptyEntry() {
  static std::string const& empty = *new std::string;
  return &empty;
}
