#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "kestrava/base/SbString.h"

/// An interned text: equal names share one entry, so comparing two names compares two pointers. Entries
/// live until the process ends. May be made from any thread and at static-initialisation time.
class SbName {
 public:
  /// The empty name.
  SbName() : m_entry(emptyEntry()) {}
  SbName(std::string_view text) : m_entry(intern(text)) {}
  SbName(char const* text) : SbName(std::string_view(text ? text : "")) {}
  SbName(std::string const& text) : SbName(std::string_view(text)) {}
  SbName(SbString const& text) : SbName(std::string_view(text.str())) {}

  std::string const& str() const { return *m_entry; }
  char const* c_str() const { return m_entry->c_str(); }
  char const* getString() const { return c_str(); }
  int getLength() const { return static_cast<int>(m_entry->size()); }
  bool empty() const { return m_entry->empty(); }
  SbString toString() const { return SbString(*m_entry); }

  friend bool operator==(SbName const& a, SbName const& b) { return a.m_entry == b.m_entry; }

 private:
  friend struct std::hash<SbName>;
  static std::string const* intern(std::string_view text);
  static std::string const* emptyEntry();

  std::string const* m_entry;
};

template <>
struct std::hash<SbName> {
  size_t operator()(SbName const& name) const noexcept { return std::hash<void const*>()(name.m_entry); }
};
