#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kestrava/base/SbString.h"

class VntExtension;
struct VntPluginInfo;

/// Reads a configuration, loads the plug-ins that it names and activates the extensions of its default
/// profile.
///
/// Whatever is wrong with a configuration or a plug-in becomes one debug error (SoDebugError) and part of the
/// status bar's message; everything else goes on. GUI thread only.
class VntPluginsManager {
 public:
  /// Created on first use.
  static VntPluginsManager* getInstance();
  /// Deactivates the extensions, last first, and destroys the plug-ins; does nothing without an instance.
  /// What a plug-in has left registered then, the shell takes out and reports.
  static void releaseInstance();

  /// Reads a file (`isFile`) or the configuration text itself. False when it is no configuration. A module
  /// that is not there is passed over: for a file it is reported as an error, for a text, which only the
  /// program itself brings, as a debug line (category "vnt.plugins").
  bool read(SbString const& textOrPath, bool isFile);

  /// Null when no plug-in of that name is loaded or it has no such extension.
  VntExtension* getExtension(SbString const& plugin, SbString const& extension) const;
  /// Those that are loaded, in that order.
  std::vector<VntPluginInfo> getPlugins() const;

  /// Calls into an extension, for which getCalledPlugin() and getCalledExtension() answer meanwhile. False
  /// when an exception left the call, which is reported; `what` names the call.
  static bool call(VntExtension* extension, char const* what, std::function<void()> const& function);
  /// Name of the plug-in that an extension is from; empty when that is not known.
  static SbString getPluginOf(VntExtension const* extension);
  /// Name of the plug-in whose code runs by a call of this class; empty when none does.
  static SbString getCalledPlugin();
  /// Null when none does.
  static VntExtension* getCalledExtension();

 private:
  VntPluginsManager();
  ~VntPluginsManager();
  struct Private;
  std::unique_ptr<Private> m_private;
};
