#include "kestrava/io/SoImageCache.h"

#include <filesystem>
#include <map>
#include <mutex>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SbImageReader.h"
#include "kestrava/io/SoInput.h"

namespace {

/// Does not keep the pixels alive: the images in use do.
struct Entry {
  std::filesystem::file_time_type written;
  SbVec3i32 size;
  int components = 0;
  std::weak_ptr<SbImage::Bytes const> bytes;
};

std::mutex mutex;

std::map<std::string, Entry>& entries() {
  static auto& instance = *new std::map<std::string, Entry>;
  return instance;
}

} // namespace

SbImage SoImageCache::get(SbString const& name, SbString& error) {
  SbString const found = SoInput::findFile(name);
  if (found.empty()) {
    error = "the image file '" + name.str() + "' is not found";
    return {};
  }
  SbString const path = SbFileHelper::toAbsolutePath(found);
  std::error_code fault;
  auto const written = std::filesystem::last_write_time(path.str(), fault);
  std::lock_guard lock(mutex);
  Entry& entry = entries()[path.str()];
  if (auto bytes = entry.bytes.lock(); bytes && entry.written == written) {
    return SbImage(entry.size, entry.components, std::move(bytes));
  }
  SbImage image;
  std::string const reason = SbImageReader::read(path, image);
  if (!reason.empty()) error = reason;
  entry = {written, image.getSize(), image.getNumComponents(), image.getSharedBytes()};
  return image;
}
