#pragma once

#include <optional>

#include "kestrava/base/SbString.h"

/// A library that has made itself known to the process, usually from a static initialiser.
struct SoModule {
  SbString fileName, version, platform;

  /// A file name that is registered already gets the new version and platform.
  static void registerModule(SbString const& fileName, SbString const& version, SbString const& platform);
  static std::optional<SoModule> find(SbString const& fileName);
};
