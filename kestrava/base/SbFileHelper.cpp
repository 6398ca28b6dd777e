#include "kestrava/base/SbFileHelper.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "kestrava/base/SoPreferences.h"

namespace fs = std::filesystem;

namespace {

constexpr std::string_view NAME_CHARACTERS =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

bool isDirectory(SbString const& path) {
  std::error_code ignored;
  return fs::is_directory(path.str(), ignored);
}

} // namespace

SbString SbFileHelper::expandString(SbString const& text) {
  std::string const& in = text.str();
  std::string out;
  for (size_t i = 0; i < in.size();) {
    size_t const dollar = std::min(in.find('$', i), in.size());
    out.append(in, i, dollar - i);
    if (dollar == in.size()) break;
    bool const braced = dollar + 1 < in.size() && in[dollar + 1] == '{';
    size_t const first = dollar + (braced ? 2 : 1);
    size_t const end = std::min(in.find_first_not_of(NAME_CHARACTERS, first), in.size());
    bool const named = end > first && (!braced || (end < in.size() && in[end] == '}'));
    if (named) {
      out += SoPreferences::getString(SbString(in.substr(first, end - first))).str();
      i = end + (braced ? 1 : 0);
    } else {
      out += '$';
      i = dollar + 1;
    }
  }
  return SbString(std::move(out));
}

SbString SbFileHelper::getDirName(SbString const& path) {
  size_t const slash = path.str().rfind('/');
  return slash == std::string::npos ? SbString("./") : SbString(path.str().substr(0, slash + 1));
}

SbString SbFileHelper::getBaseName(SbString const& path) {
  return SbString(path.str().substr(path.str().rfind('/') + 1));
}

SbString SbFileHelper::getExtension(SbString const& path) {
  SbString const name = getBaseName(path);
  size_t const dot = name.str().rfind('.');
  return dot == std::string::npos ? SbString() : SbString(name.str().substr(dot + 1));
}

SbString SbFileHelper::toUnixPath(SbString const& path) {
  std::string text = path.str();
  std::replace(text.begin(), text.end(), '\\', '/');
  return SbString(std::move(text));
}

bool SbFileHelper::isAbsolute(SbString const& path) { return path.str().starts_with('/'); }

SbString SbFileHelper::toAbsolutePath(SbString const& path) {
  std::error_code failed;
  fs::path const absolute = fs::absolute(path.str(), failed);
  return failed ? path : SbString(absolute.lexically_normal().string());
}

bool SbFileHelper::exists(SbString const& path) { return access(path.c_str(), F_OK) == 0; }

bool SbFileHelper::isReadable(SbString const& path) {
  return access(path.c_str(), R_OK) == 0 && !isDirectory(path);
}

bool SbFileHelper::isAccessible(SbString const& path) {
  return access(path.c_str(), isDirectory(path) ? R_OK | X_OK : R_OK) == 0;
}
