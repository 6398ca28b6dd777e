// A plug-in whose object can not be made.

#include <stdexcept>

#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

class Throwing : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "throwing.json")
  Q_INTERFACES(VntPlugin)
 public:
  Throwing() { throw std::runtime_error("out of order"); }
  VntExtension* getExtension(SbString const&) override { return nullptr; }
};

#include "throwing.moc"
