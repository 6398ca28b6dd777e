#include "kestrava/base/SbName.h"

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

#include "kestrava/base/SbNameEntry.h"

namespace {

/// A part of the pool with a lock of its own: an open table of those texts whose hashes end alike.
struct Shard {
  struct Slot {
    std::size_t hash = 0;
    SbNameEntry* entry = nullptr;
  };

  std::string const* find(std::string_view text, std::size_t hash) {
    std::lock_guard lock(mutex);
    if (4 * entries.size() >= 3 * slots.size()) grow();
    Slot& slot = slotOf(text, hash);
    if (!slot.entry) slot = {hash, &entries.emplace_back(text)};
    return slot.entry;
  }

 private:
  // The slot that holds the text, or the free one where it belongs.
  Slot& slotOf(std::string_view text, std::size_t hash) {
    std::size_t const mask = slots.size() - 1;
    std::size_t i = (hash >> SHARD_BITS) & mask;
    while (slots[i].entry && (slots[i].hash != hash || *slots[i].entry != text)) i = (i + 1) & mask;
    return slots[i];
  }

  void grow() {
    std::vector<Slot> const old =
        std::exchange(slots, std::vector<Slot>(slots.empty() ? 64 : 2 * slots.size()));
    std::size_t const mask = slots.size() - 1;
    for (Slot const& slot : old) {
      if (!slot.entry) continue;
      std::size_t i = (slot.hash >> SHARD_BITS) & mask;
      while (slots[i].entry) i = (i + 1) & mask;
      slots[i] = slot;
    }
  }

 public:
  static constexpr int SHARD_BITS = 4;

 private:
  std::mutex mutex;
  std::vector<Slot> slots;         // a power of two
  std::deque<SbNameEntry> entries; // addresses are stable
};

// Never destroyed: names held by statics of other libraries stay valid until the process ends.
std::array<Shard, 1 << Shard::SHARD_BITS>& pool() {
  static auto& instance = *new std::array<Shard, 1 << Shard::SHARD_BITS>;
  return instance;
}

} // namespace

std::string const* SbName::intern(std::string_view text) {
  if (text.empty()) return emptyEntry();
  std::size_t const hash = std::hash<std::string_view>()(text);
  return pool()[hash % (1 << Shard::SHARD_BITS)].find(text, hash);
}

std::string const* SbName::emptyEntry() {
  static std::string const& empty = *new SbNameEntry({});
  return &empty;
}
