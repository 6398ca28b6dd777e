// A plug-in whose metadata name no extensions.

#include "tests/plugins/ran.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

class Barren : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "barren.json")
  Q_INTERFACES(VntPlugin)
 public:
  VntExtension* getExtension(SbString const&) override { return nullptr; }
};

#include "barren.moc"
