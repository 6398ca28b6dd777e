#include "kestrava/io/SoImporter.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/io/SoByteSource.h"
#include "kestrava/io/SoSearchPath.h"

namespace {

struct Registry {
  std::mutex mutex;
  std::vector<SoImporter const*> importers;
};

Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

SoImporter const* find(SoImporter::File const& file, std::string_view beginning) {
  std::lock_guard lock(registry().mutex);
  for (SoImporter const* importer : registry().importers) {
    if (importer->takes(file, beginning)) return importer;
  }
  return nullptr;
}

/// The first bytes of what is in a file; none when it can not be read.
std::string readBeginning(SbString const& name, bool& isPacked) {
  SbString ignored;
  auto const text = SoSearchPath::getInMemoryText(name);
  auto bytes = text ? SoByteSource::fromText(text) : SoByteSource::openFile(name, ignored);
  std::string beginning(1024, '\0');
  auto fill = [&] {
    std::size_t count = 0;
    while (std::size_t const part = bytes && count < beginning.size()
                                        ? bytes->read(&beginning[count], beginning.size() - count)
                                        : 0) {
      count += part;
    }
    return count;
  };
  std::size_t count = fill();
  isPacked = SoByteSource::isPacked(beginning.data(), count);
  if (isPacked) {
    bytes = SoByteSource::unpack(std::move(bytes), beginning.substr(0, count));
    count = fill();
  }
  beginning.resize(count);
  return beginning;
}

/// Files that an extension module would read, by the ends of their names.
constexpr std::string_view KNOWN_FORMATS[] = {"3ds", "3mf", "ac",  "ase",  "blend", "bvh", "dae",
                                              "dxf", "fbx", "glb", "gltf", "ifc",   "lwo", "ms3d",
                                              "obj", "off", "ply", "stl",  "x",     "x3d"};

} // namespace

void SoImporter::add(SoImporter const* importer) {
  std::lock_guard lock(registry().mutex);
  registry().importers.push_back(importer);
}

void SoImporter::remove(SoImporter const* importer) {
  std::lock_guard lock(registry().mutex);
  std::erase(registry().importers, importer);
}

SoRef<SoNode> SoImporter::readFile(SbString const& name, std::function<void(double)> const& progress,
                                   SbString& fault) {
  File file{name, name, false};
  std::string const beginning = readBeginning(name, file.isPacked);
  // What calls itself a scene file is a broken one.
  if (beginning.empty() || beginning.starts_with("#Kestrava")) return {};
  std::string const& text = name.str();
  if (file.isPacked && text.ends_with(".gz")) file.innerName = SbString(text.substr(0, text.size() - 3));
  if (SoImporter const* importer = find(file, beginning)) {
    SoRef<SoNode> root = importer->read(file, progress, fault);
    if (!root && fault.empty()) fault = "the file can not be read";
    return root;
  }
  std::string const extension = SbFileHelper::getExtension(file.innerName).lower().str();
  bool const isKnown =
      std::find(std::begin(KNOWN_FORMATS), std::end(KNOWN_FORMATS), extension) != std::end(KNOWN_FORMATS);
  if (isKnown)
    fault = SbString::format("the format '%s' needs the module \"foreign_formats\"", extension.c_str());
  return {};
}
