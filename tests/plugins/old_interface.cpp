// A plug-in that was made for another version of the framework.

#include "tests/plugins/ran.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

class OldInterface : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "vantle.VntPlugin/0" FILE "old_interface.json")
  Q_INTERFACES(VntPlugin)
 public:
  VntExtension* getExtension(SbString const&) override { return nullptr; }
};

#include "old_interface.moc"
