#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"

/// The plug-in "VntDefaults": the dock "Field Editor" and an editor for each common type of field.
class VntDefaultsPlugin : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "VntDefaults.json")
  Q_INTERFACES(VntPlugin)
 public:
  VntDefaultsPlugin();
  ~VntDefaultsPlugin() override;

  VntExtension* getExtension(SbString const& name) override;

 private:
  std::vector<std::unique_ptr<VntExtension>> m_extensions;
};
