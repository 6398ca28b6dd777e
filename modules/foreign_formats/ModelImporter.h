#pragma once

#include <set>
#include <string>

#include "kestrava/io/SoImporter.h"

/// Reads the 3D formats that Assimp knows.
class ModelImporter : public SoImporter {
 public:
  ModelImporter();
  bool takes(File const& file, std::string_view beginning) const override;
  SoRef<SoNode> read(File const& file, std::function<void(double)> const& progress,
                     SbString& fault) const override;

 private:
  std::set<std::string> m_extensions;
};
