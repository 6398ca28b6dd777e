#include "modules/foreign_formats/ModelImporter.h"

#include <assimp/Importer.hpp>
#include <sstream>

#include "kestrava/base/SbFileHelper.h"
#include "modules/foreign_formats/ModelReading.h"
#include "modules/foreign_formats/ReaderProcess.h"

ModelImporter::ModelImporter() {
  std::string list;
  Assimp::Importer().GetExtensionList(list); // "*.3ds;*.obj;..."
  std::istringstream stream(list);
  for (std::string entry; std::getline(stream, entry, ';');) {
    if (entry.starts_with("*.")) m_extensions.insert(entry.substr(2));
  }
}

bool ModelImporter::takes(File const& file, std::string_view beginning) const {
  for (std::string_view sign : {"glTF", "Kaydara FBX Binary", "ply\n", "ply\r\n", "BLENDER"}) {
    if (beginning.starts_with(sign)) return true;
  }
  return m_extensions.contains(SbFileHelper::getExtension(file.innerName).lower().str()) ||
         beginning.find("<COLLADA") != beginning.npos;
}

SoRef<SoNode> ModelImporter::read(File const& file, std::function<void(double)> const& progress,
                                  SbString& fault) const {
  SoRef<SoNode> root;
  if (!readInProcess(file, progress, root, fault)) root = readModel(file, progress, fault);
  return root;
}
