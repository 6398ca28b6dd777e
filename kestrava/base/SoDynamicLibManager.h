#pragma once

#include "kestrava/base/SbString.h"

/// Shared libraries at run time.
class SoDynamicLibManager {
 public:
  SoDynamicLibManager() = delete;

  /// The absolute path of the library or program that holds an address; empty when none does.
  static SbString getLibraryFromSymbol(void const* address);
  /// A handle, null when the library can not be loaded. A path without separator is searched where the
  /// dynamic linker searches. With `global` the libraries loaded later see its symbols.
  static void* open(SbString const& path, bool global = false);
  /// Null when the library has no such symbol.
  static void* symbol(void* library, SbString const& name);
  /// Releases a handle; null is allowed. No pointer into the library may be used afterwards.
  static void close(void* library);
  /// Why the last failed operation of this thread failed.
  static SbString getLastError();
};
