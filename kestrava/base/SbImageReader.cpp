#include "kestrava/base/SbImageReader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>

#include "kestrava/base/SbImageCodecs.h"

namespace fs = std::filesystem;

namespace {

bool startsWith(SbImageBytes const& file, std::initializer_list<unsigned char> bytes) {
  return file.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), file.begin());
}

std::mutex mutex;

std::vector<SbImageReader::Codec const*>& addedCodecs() {
  static auto& instance = *new std::vector<SbImageReader::Codec const*>;
  return instance;
}

std::string decode(SbImageBytes const& file, SbImage& image) {
  if (startsWith(file, {0x89, 'P', 'N', 'G'})) return SbDecodePng(file, image);
  if (startsWith(file, {0xff, 0xd8, 0xff})) return SbDecodeJpeg(file, image);
  if (startsWith(file, {0x01, 0xda})) return SbDecodeSgi(file, image);
  if (file.empty()) return "the file is empty";
  std::unique_lock lock(mutex);
  std::vector<SbImageReader::Codec const*> const codecs = addedCodecs();
  lock.unlock();
  std::string names = "JPEG, PNG or SGI RGB";
  for (SbImageReader::Codec const* codec : codecs) {
    if (codec->takes(file)) return codec->decode(file, image);
    names = codec->name + (", " + names);
  }
  return "the file is none of " + names +
         (codecs.empty() ? ", and other formats need the module \"image_formats\"" : "");
}

std::string readFile(SbString const& path, SbImageBytes& file) {
  std::error_code failed;
  std::uintmax_t const size = fs::file_size(path.str(), failed);
  if (failed) return failed.message();
  if (size > SbImage::MAX_BYTES) return "the file is too large";
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!stream) return std::strerror(errno);
  file.resize(size);
  if (std::fread(file.data(), 1, file.size(), stream.get()) != file.size())
    return "the file can not be read to its end";
  return {};
}

} // namespace

std::string SbCheckImageSize(long width, long height, int components, std::size_t fileBytes,
                             std::size_t ratio) {
  constexpr long MAX_EXTENT = 1 << 30;
  if (width < 1 || height < 1 || components < 1) return "the image has no pixels";
  std::string const size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
  std::size_t const bytes = width > MAX_EXTENT || height > MAX_EXTENT
                                ? 0
                                : SbImage::countBytes(SbVec3i32(width, height, 0), components);
  if (bytes == 0) return "an image of " + size + " is too large";
  if (bytes / ratio > fileBytes) return "the file is too short for " + size;
  return {};
}

void SbImageReader::addCodec(Codec const* codec) {
  std::lock_guard lock(mutex);
  addedCodecs().push_back(codec);
}

void SbImageReader::removeCodec(Codec const* codec) {
  std::lock_guard lock(mutex);
  std::erase(addedCodecs(), codec);
}

std::string SbImageReader::read(std::vector<unsigned char> const& file, SbImage& image) {
  try {
    return decode(file, image);
  } catch (std::bad_alloc const&) {
    return "there is not enough memory for the image";
  }
}

std::string SbImageReader::read(SbString const& path, SbImage& image) {
  SbImageBytes file;
  std::string reason;
  try {
    reason = readFile(path, file);
  } catch (std::bad_alloc const&) {
    reason = "there is not enough memory for the file";
  }
  if (reason.empty()) reason = read(file, image);
  return reason.empty() ? reason : "The image " + path.str() + " can not be read: " + reason + ".";
}
