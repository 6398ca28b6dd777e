// A plug-in whose metadata lack the name.

#include "tests/plugins/ran.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

class Nameless : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "nameless.json")
  Q_INTERFACES(VntPlugin)
 public:
  VntExtension* getExtension(SbString const&) override { return nullptr; }
};

#include "nameless.moc"
