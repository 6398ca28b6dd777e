#pragma once

#include <memory>
#include <vector>

#include "vnt/VntPlugin.h"

/// The plug-in "VntDefaults": the dock "Field Editor" and an editor for each common type of field.
class VntDefaultsPlugin : public VntPlugin {
 public:
  VntDefaultsPlugin();
  ~VntDefaultsPlugin() override;

  SbString getName() const override { return "VntDefaults"; }
  VntExtension* getExtension(SbString const& name) override;

 private:
  std::vector<std::unique_ptr<VntExtension>> m_extensions;
};
