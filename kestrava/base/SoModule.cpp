#include "kestrava/base/SoModule.h"

#include <map>
#include <mutex>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoModuleTool.h"

namespace {

struct Registry {
  std::mutex mutex;
  std::map<std::string, SoModule> byName;
};

Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

struct Extension {
  void* library = nullptr;
  int uses = 0;
};

std::map<std::string, Extension>& extensions() {
  static auto& instance = *new std::map<std::string, Extension>;
  return instance;
}

void callPlain(void* library, SbString const& name) {
  if (void* function = SoDynamicLibManager::symbol(library, name)) reinterpret_cast<void (*)()>(function)();
}

} // namespace

void SoModule::registerModule(SbString const& fileName, SbString const& version, SbString const& platform) {
  std::lock_guard lock(registry().mutex);
  registry().byName.insert_or_assign(fileName.str(), SoModule{fileName, version, platform});
}

std::optional<SoModule> SoModule::find(SbString const& fileName) {
  std::lock_guard lock(registry().mutex);
  auto const found = registry().byName.find(fileName.str());
  return found == registry().byName.end() ? std::nullopt : std::optional(found->second);
}

bool SoModuleTool::initModule(SbString const& name) {
  Extension& extension = extensions()[name.str()];
  if (!extension.library) {
    SbString const own =
        SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&SoModuleTool::initModule));
    SbString const file = SbFileHelper::getDirName(own) + "libqor_" + name.str() + ".so";
    if (SbFileHelper::isReadable(file)) extension.library = SoDynamicLibManager::open(file);
    if (!extension.library) return false;
  }
  if (extension.uses++ == 0) callPlain(extension.library, "qor_" + name.str() + "_init");
  return true;
}

bool SoModuleTool::finishModule(SbString const& name) {
  auto const found = extensions().find(name.str());
  if (found == extensions().end() || found->second.uses == 0) return false;
  if (--found->second.uses == 0) callPlain(found->second.library, "qor_" + name.str() + "_finish");
  return true;
}
