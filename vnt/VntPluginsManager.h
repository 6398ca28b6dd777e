#pragma once

#include <memory>

#include "kestrava/base/SbString.h"

class VntExtension;
class VntPlugin;

/// Reads a configuration, loads the plug-in modules that it names and activates the extensions of its default
/// profile.
class VntPluginsManager {
 public:
  /// Created on first use.
  static VntPluginsManager* getInstance();
  /// Deactivates the extensions, last first, and destroys the plug-ins; does nothing without an instance.
  static void releaseInstance();

  /// Reads a file (`isFile`) or the configuration text itself. False when it is no configuration, which is
  /// reported. A module that is not there is passed over: for a file it is reported as an error, for a text,
  /// which only the program itself brings, as a debug line (category "vnt.plugins").
  bool read(SbString const& textOrPath, bool isFile);

  /// Null when no plug-in of that name is loaded or it has no such extension.
  VntExtension* getExtension(SbString const& plugin, SbString const& extension) const;

 private:
  VntPluginsManager();
  ~VntPluginsManager();
  struct Private;
  std::unique_ptr<Private> m_private;
};
