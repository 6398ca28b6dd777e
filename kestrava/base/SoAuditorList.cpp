#include "kestrava/base/SoAuditorList.h"

#include <algorithm>
#include <iterator>

void SoAuditorList::append(void* auditor, Kind kind) {
  std::uintptr_t const entry = reinterpret_cast<std::uintptr_t>(auditor) | kind;
  if (m_value == 0) {
    m_value = entry;
    return;
  }
  if (!isMany()) {
    auto* list = new std::vector<std::uintptr_t>{m_value};
    m_value = reinterpret_cast<std::uintptr_t>(list) | MANY;
  }
  many()->push_back(entry);
}

namespace {

/// Where the last entry was taken from a list: whoever releases many users of an object goes on beside it.
struct LastPlace {
  void const* list = nullptr;
  std::size_t place = 0;
};

LastPlace& lastPlace(void const* list) {
  static thread_local LastPlace places[16];
  return places[reinterpret_cast<std::uintptr_t>(list) / 64 % std::size(places)];
}

/// The place of an entry, searched for from both ends and from the last place on in both directions.
std::size_t findPlace(std::vector<std::uintptr_t> const& list, std::uintptr_t entry) {
  std::size_t const length = list.size();
  LastPlace& last = lastPlace(&list);
  std::size_t const middle = last.list == &list ? std::min(last.place, length) : 0;
  std::size_t found = length;
  for (std::size_t step = 0; step < length && found == length; ++step) {
    for (std::size_t const place : {length - 1 - step, step, middle + step, middle - 1 - step}) {
      if (place < length && list[place] == entry) found = place;
    }
  }
  last = {&list, found};
  return found;
}

}  // namespace

void SoAuditorList::remove(void* auditor, Kind kind) {
  std::uintptr_t const entry = reinterpret_cast<std::uintptr_t>(auditor) | kind;
  if (!isMany()) {
    if (m_value == entry) m_value = 0;
    return;
  }
  std::vector<std::uintptr_t>& list = *many();
  std::size_t const place = findPlace(list, entry);
  if (place == list.size()) return;
  list[place] = list.back();
  list.pop_back();
  if (list.empty()) {
    delete &list;
    m_value = 0;
  }
}
