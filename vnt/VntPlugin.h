#pragma once

#include <QtPlugin>

class SbString;
class VntExtension;

/// What a library of extensions brings: a QObject with this interface, which it declares by three lines,
///
///     class StatisticsPlugin : public QObject, public VntPlugin {
///       Q_OBJECT
///       Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "statistics.json")
///       Q_INTERFACES(VntPlugin)
///
/// and a JSON file beside the header, which is read before any code of the library runs:
///
///     { "name": "Statistics", "version": "1.0", "description": "...", "extensions": ["Statistics"] }
///
/// "name" is what configurations call the plug-in, "extensions" are all names that getExtension() answers to;
/// these two must be there. The object is made when the configuration is read and destroyed before the shell
/// is; the library then stays loaded, and a later session makes a new object.
class VntPlugin {
 public:
  virtual ~VntPlugin() = default;
  /// Null when there is none of that name. The plug-in owns it, and always answers with the same one.
  virtual VntExtension* getExtension(SbString const& name) = 0;
};

/// The number at the end changes whenever a class that plug-ins use changes its layout; a library made for
/// another number is refused.
#define VNT_PLUGIN_IID "vantle.VntPlugin/1"
Q_DECLARE_INTERFACE(VntPlugin, VNT_PLUGIN_IID)
