#include "kestrava/nodes/SoEventCallback.h"

#include <algorithm>

void SoEventCallback::removeEventCallback(SoType eventType, Function* function, void* data) {
  auto const found = std::find(m_entries.begin(), m_entries.end(), Entry{eventType, function, data});
  if (found != m_entries.end()) m_entries.erase(found);
}
