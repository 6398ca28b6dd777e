#pragma once

#include <optional>

#include "kestrava/base/SbString.h"

/// Settings of the process: a value set here, else the environment variable of that name, else the default.
/// Usable from any thread and at static-initialisation time.
class SoPreferences {
 public:
  SoPreferences() = delete;

  /// A value that is set may be empty: hasValue() tells it from none.
  static SbString getString(SbString const& key, SbString const& defaultValue = SbString());
  static bool hasValue(SbString const& key);
  /// A number (0 is false), or true/false, yes/no, on/off in any letter case. Anything else is the default.
  static bool getBool(SbString const& key, bool defaultValue);
  /// Decimal; a text that is no number, or is out of range, is the default.
  static int getInt(SbString const& key, int defaultValue);
  static float getFloat(SbString const& key, float defaultValue);

  /// For every later read in the process; the environment stays as it is.
  static void setValue(SbString const& key, SbString const& value);
  /// What setValue() gave, whatever the environment says; none when nothing is set.
  static std::optional<SbString> getSetValue(SbString const& key);
  /// Takes back setValue(): the environment counts again.
  static void removeValue(SbString const& key);
};
