#include "kestrava/base/SoPreferences.h"

#include <charconv>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>

namespace {

struct Store {
  std::mutex mutex;
  std::map<std::string, SbString> values;
};

// Never destroyed: preferences are read by destructors of other statics.
Store& store() {
  static Store& instance = *new Store;
  return instance;
}

std::optional<SbString> find(SbString const& key) {
  if (auto const value = SoPreferences::getSetValue(key)) return value;
  if (char const* value = std::getenv(key.c_str())) return SbString(value);
  return std::nullopt;
}

std::string_view trimmed(std::string_view text) {
  auto const first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

template <class T> T number(SbString const& key, T defaultValue) {
  std::optional<SbString> const value = find(key);
  if (!value) return defaultValue;
  std::string_view const text = trimmed(value->str());
  T result{};
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
  return error == std::errc() && end == text.data() + text.size() ? result : defaultValue;
}

} // namespace

SbString SoPreferences::getString(SbString const& key, SbString const& defaultValue) {
  return find(key).value_or(defaultValue);
}

bool SoPreferences::hasValue(SbString const& key) { return find(key).has_value(); }

bool SoPreferences::getBool(SbString const& key, bool defaultValue) {
  std::optional<SbString> const value = find(key);
  if (!value) return defaultValue;
  std::string const lower = value->lower().str();
  std::string_view const text = trimmed(lower);
  for (char const* yes : {"true", "yes", "on"}) {
    if (text == yes) return true;
  }
  for (char const* no : {"false", "no", "off"}) {
    if (text == no) return false;
  }
  return getInt(key, defaultValue ? 1 : 0) != 0;
}

int SoPreferences::getInt(SbString const& key, int defaultValue) { return number(key, defaultValue); }
float SoPreferences::getFloat(SbString const& key, float defaultValue) { return number(key, defaultValue); }

std::optional<SbString> SoPreferences::getSetValue(SbString const& key) {
  std::lock_guard lock(store().mutex);
  auto const found = store().values.find(key.str());
  return found == store().values.end() ? std::nullopt : std::optional(found->second);
}

void SoPreferences::setValue(SbString const& key, SbString const& value) {
  std::lock_guard lock(store().mutex);
  store().values.insert_or_assign(key.str(), value);
}

void SoPreferences::removeValue(SbString const& key) {
  std::lock_guard lock(store().mutex);
  store().values.erase(key.str());
}
