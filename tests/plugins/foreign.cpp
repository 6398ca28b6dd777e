// A plug-in of another program.

#include "tests/plugins/ran.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

class Foreign : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.example.Codec" FILE "foreign.json")
  Q_INTERFACES(VntPlugin)
 public:
  VntExtension* getExtension(SbString const&) override { return nullptr; }
};

#include "foreign.moc"
