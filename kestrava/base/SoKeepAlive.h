#pragma once

#include "kestrava/base/SoBase.h"

/// Keeps an object while something runs that may let go of it. An object that nobody had referenced before is
/// left as it was, with count 0; a null pointer is allowed.
class SoKeepAlive {
 public:
  explicit SoKeepAlive(SoBase const* object) : m_object(object), m_isOwned(object && object->getRefCount() > 0) {
    if (object) object->ref();
  }
  ~SoKeepAlive() {
    if (m_object) m_isOwned ? m_object->unref() : m_object->unrefNoDelete();
  }
  SoKeepAlive(SoKeepAlive const&) = delete;
  SoKeepAlive& operator=(SoKeepAlive const&) = delete;

 private:
  SoBase const* m_object;
  bool m_isOwned;
};
