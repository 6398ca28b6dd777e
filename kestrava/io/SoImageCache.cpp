#include "kestrava/io/SoImageCache.h"

#include <filesystem>
#include <map>
#include <mutex>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SoError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoSearchPath.h"

namespace {

/// Does not keep the pixels alive: the images in use do.
struct Entry {
  std::filesystem::file_time_type written;
  std::weak_ptr<SoImageCache::File const> file;
};

std::mutex mutex;

std::map<std::string, Entry>& entries() {
  static auto& instance = *new std::map<std::string, Entry>;
  return instance;
}

std::shared_ptr<SoImageCache::File const> find(SbString const& name, SbString const& sceneFile, bool& isNew) {
  SbString const found = SoSearchPath::findBeside(sceneFile, name);
  // A file that is not there has an entry too, under its bare name.
  std::string const path = found.empty() ? name.str() : SbFileHelper::toAbsolutePath(found).str();
  std::error_code ignored;
  auto const written = std::filesystem::last_write_time(path, ignored);
  std::lock_guard lock(mutex);
  Entry& entry = entries()[path];
  auto known = entry.file.lock();
  isNew = !known || entry.written != written;
  if (!isNew) return known;
  auto const file = std::make_shared<SoImageCache::File>();
  if (found.empty()) {
    file->fault = "the image file '" + name.str() + "' is not found";
  } else {
    file->fault = SbString(SbImageReader::read(path, file->image));
  }
  entry = {written, file};
  return file;
}

} // namespace

std::shared_ptr<SoImageCache::File const> SoImageCache::open(SbString const& name,
                                                             SbString const& sceneFile) {
  bool isNew = false;
  auto const file = find(name, sceneFile, isNew);
  if (isNew && !file->fault.empty()) {
    SoReadError::post("%s%s%s", sceneFile.c_str(), sceneFile.empty() ? "" : ": ", file->fault.c_str());
  }
  return file;
}

SbImage SoImageCache::get(SbString const& name, SbString& error) {
  bool isNew = false;
  auto const file = find(name, SbString(), isNew);
  error = file->fault;
  return file->image;
}

namespace {
/// Of the references in the nodes, which several rendering threads ask.
std::mutex namesMutex;
} // namespace

void SoNamedImage::nameChanged() {
  auto const& files = SoDB::getFilesBeingRead();
  std::lock_guard lock(namesMutex);
  if (!files.empty()) m_sceneFile = files.back();
  m_file.reset();
}

SbImage SoNamedImage::get(SbString const& name) {
  std::unique_lock lock(namesMutex);
  if (m_file) return m_file->image;
  SbString const sceneFile = m_sceneFile;
  lock.unlock(); // who hears of a fault may ask for images
  auto const file = SoImageCache::open(name, sceneFile);
  lock.lock();
  m_file = file;
  return file->image;
}
