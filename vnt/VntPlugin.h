#pragma once

#include "kestrava/base/SbString.h"

class VntExtension;

/// What a plug-in module brings: its name in configurations ("VntDefaults") and its extensions.
/// The module holds one line `VNT_EXPORT_PLUGIN(TheClass)`.
class VntPlugin {
 public:
  virtual ~VntPlugin() = default;
  virtual SbString getName() const = 0;
  /// Null when there is none of that name. The plug-in owns it.
  virtual VntExtension* getExtension(SbString const& name) = 0;

  /// Changes whenever a class of the framework changes its layout; a module built for another one is refused.
  static constexpr int VERSION = 1;
};

#define VNT_EXPORT_PLUGIN(Class)                                                                          \
  extern "C" __attribute__((visibility("default"))) int vntPluginVersion() { return VntPlugin::VERSION; } \
  extern "C" __attribute__((visibility("default"))) VntPlugin* vntCreatePlugin() { return new Class; }
