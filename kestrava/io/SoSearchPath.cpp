#include "kestrava/io/SoSearchPath.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

#include "kestrava/base/SbFileHelper.h"

namespace {

// Never destroyed: texts are registered by static initialisers and asked for until the process ends.
struct Registry {
  std::mutex mutex;
  std::map<SbString, std::shared_ptr<std::string const>> texts;
  std::vector<std::string> folders;  // each ends with a separator
};

Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

std::string asFolder(SbString const& folder) {
  return folder.empty() || folder.str().ends_with('/') ? folder.str() : folder.str() + '/';
}

}  // namespace

namespace SoSearchPath {

void addInMemoryText(SbString const& name, SbString const& text) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  r.texts[name] = std::make_shared<std::string const>(text.str());
}

std::shared_ptr<std::string const> getInMemoryText(SbString const& name) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  auto const found = r.texts.find(name);
  return found == r.texts.end() ? nullptr : found->second;
}

void addFirst(SbString const& folder) {
  remove(folder);
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  r.folders.insert(r.folders.begin(), asFolder(folder));
}

void addLast(SbString const& folder) {
  remove(folder);
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  r.folders.push_back(asFolder(folder));
}

void remove(SbString const& folder) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  std::erase(r.folders, asFolder(folder));
}

bool contains(SbString const& folder) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  return std::find(r.folders.begin(), r.folders.end(), asFolder(folder)) != r.folders.end();
}

std::vector<std::string> getFolders() {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  return r.folders;
}

SbString find(SbString const& name) {
  if (name.empty()) return SbString();
  if (SbFileHelper::exists(name)) return name;
  if (SbFileHelper::isAbsolute(name)) return SbString();
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  for (std::string const& folder : r.folders) {
    SbString const candidate(folder + name.str());
    if (SbFileHelper::exists(candidate)) return candidate;
  }
  return SbString();
}

SbString findBeside(SbString const& mentionedIn, SbString const& name) {
  if (!mentionedIn.empty() && !name.empty() && !SbFileHelper::isAbsolute(name)) {
    SbString const candidate = SbFileHelper::getDirName(mentionedIn) + name.str();
    if (SbFileHelper::exists(candidate)) return candidate;
  }
  return find(name);
}

}  // namespace SoSearchPath
