#include "kestrava/base/SoAuditorList.h"

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

void SoAuditorList::remove(void* auditor, Kind kind) {
  std::uintptr_t const entry = reinterpret_cast<std::uintptr_t>(auditor) | kind;
  if (!isMany()) {
    if (m_value == entry) m_value = 0;
    return;
  }
  std::vector<std::uintptr_t>& list = *many();
  for (std::size_t front = 0, back = list.size(); front < back; ++front) {
    --back;
    std::size_t const hit = list[front] == entry ? front : list[back] == entry ? back : list.size();
    if (hit == list.size()) continue;
    list[hit] = list.back();
    list.pop_back();
    break;
  }
  if (list.empty()) {
    delete &list;
    m_value = 0;
  }
}
