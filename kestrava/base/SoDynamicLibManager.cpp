#include "kestrava/base/SoDynamicLibManager.h"

#include <dlfcn.h>

#include <filesystem>

#include "kestrava/base/SbFileHelper.h"

namespace {

thread_local std::string t_lastError;

template <class T> T remember(T result, bool failed) {
  if (failed) {
    char const* const reason = dlerror();
    t_lastError = reason ? reason : "unknown reason";
  }
  return result;
}

} // namespace

SbString SoDynamicLibManager::getLibraryFromSymbol(void const* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0 || !info.dli_fname) {
    t_lastError = "the address belongs to no library";
    return SbString();
  }
  SbString const name(info.dli_fname);
  if (name.str().find('/') != std::string::npos) return SbFileHelper::toAbsolutePath(name);
  // The program itself, under the name it was called by.
  std::error_code failed;
  std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe", failed);
  return failed ? name : SbString(program.string());
}

void* SoDynamicLibManager::open(SbString const& path, bool global) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | (global ? RTLD_GLOBAL : RTLD_LOCAL));
  return remember(library, !library);
}

void* SoDynamicLibManager::symbol(void* library, SbString const& name) {
  void* const address = dlsym(library, name.c_str());
  return remember(address, !address);
}

void SoDynamicLibManager::close(void* library) {
  if (library) remember(0, dlclose(library) != 0);
}

SbString SoDynamicLibManager::getLastError() { return SbString(t_lastError); }
