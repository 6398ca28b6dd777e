#include "kestrava/base/SbImageWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SbImageCodecs.h"

namespace fs = std::filesystem;

namespace {

SbImage withoutAlpha(SbImage const& image) {
  if (!image.hasAlpha()) return image;
  int const components = image.getNumComponents();
  SbImageBytes pixels;
  pixels.reserve(image.getNumBytes());
  for (std::size_t i = 0; i < image.getNumBytes(); ++i) {
    if (i % static_cast<std::size_t>(components) != static_cast<std::size_t>(components) - 1) {
      pixels.push_back(image.getBytes()[i]);
    }
  }
  return SbImage(image.getSize(), components - 1, std::move(pixels));
}

std::string encode(std::string const& extension, SbImage const& image, int quality, SbImageBytes& file) {
  auto is = [&](std::initializer_list<char const*> names) {
    return std::any_of(names.begin(), names.end(), [&](char const* name) { return extension == name; });
  };
  if (image.isEmpty()) return "the image is empty";
  if (is({"png"})) return SbEncodePng(image, file);
  if (is({"jpg", "jpeg"})) return SbEncodeJpeg(withoutAlpha(image), quality, file);
  if (is({"tif", "tiff"})) return SbEncodeTiff(image, file);
  if (is({"rgb", "rgba", "bw", "sgi"})) return SbEncodeSgi(image, file);
  if (is({"ps", "eps"})) return SbEncodePostScript(withoutAlpha(image), file);
  return "there is no image format for the extension \"" + extension + "\"";
}

std::string writeBytes(std::string const& path, SbImageBytes const& file) {
  std::FILE* const stream = std::fopen(path.c_str(), "wb");
  if (!stream) return std::strerror(errno);
  bool const written = std::fwrite(file.data(), 1, file.size(), stream) == file.size();
  int const writeError = errno;
  if (std::fclose(stream) == 0 && written) return {};
  return std::strerror(written ? errno : writeError);
}

// Into a file beside it first, which then takes its name; what is no plain file (a pipe, a link) stays what
// it is.
std::string replaceFile(std::string const& path, SbImageBytes const& file) {
  std::error_code ignored, failed;
  fs::file_status const old = fs::symlink_status(path, ignored);
  if (fs::exists(old) && !fs::is_regular_file(old)) return writeBytes(path, file);
  std::string const part = path + ".part";
  std::string reason = writeBytes(part, file);
  if (reason.empty()) {
    fs::rename(part, path, failed);
    if (failed) reason = failed.message();
  }
  if (!reason.empty()) fs::remove(part, ignored);
  return reason;
}

} // namespace

std::string SbImageWriter::write(SbString const& path, SbImage const& image, int quality) {
  std::string reason;
  try {
    SbImage flat = image;
    if (image.getDepth() > 0) {
      auto const slice = image.getNumBytes() / static_cast<std::size_t>(image.getDepth());
      flat = SbImage(SbVec2i32(image.getWidth(), image.getHeight()), image.getNumComponents(),
                     SbImageBytes(image.getBytes(), image.getBytes() + slice));
    }
    SbImageBytes file;
    reason = encode(SbFileHelper::getExtension(path).lower().str(), flat, quality, file);
    if (reason.empty()) reason = replaceFile(path.str(), file);
  } catch (std::bad_alloc const&) {
    reason = "there is not enough memory";
  }
  return reason.empty() ? reason : "The image " + path.str() + " can not be written: " + reason + ".";
}
